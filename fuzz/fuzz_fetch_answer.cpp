// Fuzzes the parser of nocta-fetch's answers, because a flaw in nocta-fetch must not affect Nocta.

#include "Expect.h"
#include "backends/linux/fetch/FetchProtocol.h"
#include "backends/linux/network/Fetch.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace nocta {
namespace {

bool isPrintable(const std::string& text) {
    return text.size() <= 2048 &&
           std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
}

void check(const AppcastItem& item) {
    for (const auto& version : {item.version, item.shortVersionString}) {
        expect(isPrintable(version) && !version.empty() && version.size() <= 64 &&
                   version.find_first_of("/ ") == std::string::npos,
               "a version can be part of a file name");
    }
    for (const auto& text :
         {item.minimumSystemVersion, item.channel, item.os, item.url, item.edSignature}) {
        expect(isPrintable(text), "a value is short and printable");
    }
    expect(item.length >= 0, "a length is not negative");
    expect(item.releaseNotes.size() <= 1 << 14, "notes are short");
    expect(std::ranges::all_of(item.releaseNotes,
                               [](unsigned char c) { return c == '\n' || (c >= ' ' && c != 127); }),
           "notes contain no control characters");
}
void check(const Package& package) {
    expect(package.path.empty(), "the helper does not choose the path");
    expect(isPrintable(package.name) && isPrintable(package.version) &&
               isPrintable(package.architecture),
           "a value is short and printable");
}
void check(const FetchProgress& progress) {
    expect(progress.received >= 0, "the progress is not negative");
}
void check(const FetchStatus& status) {
    expect(status.code >= 0 && status.code <= 999, "a status has at most three digits");
}
void check(const FetchEnd& /*end*/) {}
void check(const FetchFailure& failure) {
    const auto text = textOf(failure);
    expect(!text.empty() && text.find('\n') == std::string::npos, "an error is one line");
}

} // namespace
} // namespace nocta

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto answer = nocta::parseFetchAnswer({reinterpret_cast<const char*>(data), size});
    if (answer) {
        std::visit([](const auto& value) { nocta::check(value); }, *answer);
        auto line = nocta::serialized(*answer);
        line.pop_back();
        nocta::expect(nocta::parseFetchAnswer(line) == answer, "an answer reads back the same");
    }
    return 0;
}
