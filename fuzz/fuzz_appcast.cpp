// Fuzzes the appcast parser of nocta-fetch, and the comparison of versions.

#include "Expect.h"
#include "backends/linux/fetch/AppcastParser.h"
#include "updates/VersionOrder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace nocta {
namespace {

struct Appcast {
    std::vector<AppcastItem> items;
    std::optional<FetchError> error;
};

Appcast parse(std::string_view xml, std::size_t pieceSize) {
    Appcast appcast;
    AppcastParser parser([&](const AppcastItem& item) { appcast.items.push_back(item); });
    while (!xml.empty() && !appcast.error) {
        appcast.error = parser.add(xml.substr(0, pieceSize));
        xml.remove_prefix(std::min(pieceSize, xml.size()));
    }
    if (!appcast.error) {
        appcast.error = parser.finish();
    }
    return appcast;
}

/// Nocta must accept everything that its helper sends.
void checkItem(const AppcastItem& item) {
    auto line = serialized(item);
    expect(line.size() <= maxFetchLineSize, "an item fits into a line");
    expect(line.find('\n') == line.size() - 1, "an item is one line");
    line.pop_back();
    expect(parseFetchAnswer(line) == FetchAnswer(item), "an item reads back the same");
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
    const std::string_view xml(reinterpret_cast<const char*>(data), size);
    const auto appcast = nocta::parse(xml, size + 1);
    for (std::size_t i = 0; i < appcast.items.size(); ++i) {
        nocta::checkItem(appcast.items[i]);
        nocta::checkOrder(appcast.items[i], appcast.items[i / 2]);
    }
    const auto pieces = nocta::parse(xml, 1 + size / 7);
    nocta::expect(pieces.items == appcast.items && pieces.error == appcast.error,
                  "the pieces make no difference");
    return 0;
}
