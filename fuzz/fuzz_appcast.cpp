// Fuzzes the appcast parser and the comparison of versions.

#include "Expect.h"
#include "backends/linux/updates/Appcast.h"
#include "backends/linux/updates/VersionOrder.h"

#include <QString>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace nocta {
namespace {

bool isPrintable(const std::string& text) {
    return std::ranges::all_of(text, [](char c) { return c >= '!' && c <= '~'; });
}

void checkItem(const AppcastItem& item) {
    expect(!item.version.empty() && item.version.size() <= 64, "a version is short");
    expect(!item.shortVersionString.empty() && item.shortVersionString.size() <= 64,
           "a version that users see is short");
    expect(isPrintable(item.version) && isPrintable(item.shortVersionString),
           "a version is printable");
    expect(!item.url.empty() && item.url.size() <= 2048, "an address is short");

    const auto notes = QString::fromStdString(item.releaseNotes);
    expect(notes.size() <= (1 << 14) + 1, "notes are short");
    for (const auto character : notes) {
        expect(character == u'\n' || (character.category() != QChar::Other_Control &&
                                      character.category() != QChar::Other_Format),
               "notes contain no hidden characters");
    }
}

void checkOrder(const AppcastItem& a, const AppcastItem& b) {
    expect(compareVersions(a.version, a.version) == 0, "a version equals itself");
    expect((compareVersions(a.version, b.version) < 0) ==
               (compareVersions(b.version, a.version) > 0),
           "swapping two versions reverses their order");
}

} // namespace
} // namespace nocta

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto appcast = nocta::parseAppcast({reinterpret_cast<const char*>(data), size});
    if (appcast.error) {
        nocta::expect(appcast.items.empty(), "a refused feed has no items");
        nocta::expect(appcast.error->find('\n') == std::string::npos, "an error is one line");
    }
    for (std::size_t i = 0; i < appcast.items.size(); ++i) {
        nocta::checkItem(appcast.items[i]);
        nocta::checkOrder(appcast.items[i], appcast.items[i / 2]);
    }
    return 0;
}
