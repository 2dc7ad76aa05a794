#include "updates/VersionOrder.h"

#include <algorithm>

namespace nocta {

namespace {

// Independent of the locale.
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// A number without its leading zeros, or a word. An empty string means zero.
struct Part {
    std::string_view text;
    bool isWord = false;
    bool isPrerelease = false;
};

/// Removes and returns the first part. Returns an empty part when nothing is left.
Part takePart(std::string_view& version) {
    const auto begin = static_cast<std::size_t>(
        std::ranges::find_if(version, [](char c) { return isDigit(c) || isLetter(c); }) -
        version.begin());
    const auto isMarked = version.substr(0, begin).find('~') != std::string_view::npos;
    version.remove_prefix(begin);
    if (version.empty()) {
        return {};
    }
    const auto isWord = isLetter(version.front());
    const auto end = static_cast<std::size_t>(
        std::ranges::find_if_not(version, isWord ? isLetter : isDigit) - version.begin());
    auto text = version.substr(0, end);
    version.remove_prefix(end);
    if (!isWord) {
        text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
    }
    return {text, isWord, isWord || isMarked};
}

std::weak_ordering compareParts(const Part& a, const Part& b) {
    if (a.isPrerelease != b.isPrerelease) {
        return a.isPrerelease ? std::weak_ordering::less : std::weak_ordering::greater;
    }
    if (a.isWord != b.isWord) {
        return a.isWord ? std::weak_ordering::greater : std::weak_ordering::less;
    }
    if (!a.isWord && a.text.size() != b.text.size()) {
        return a.text.size() <=> b.text.size();
    }
    return a.text.compare(b.text) <=> 0;
}

} // namespace

std::weak_ordering compareVersions(std::string_view a, std::string_view b) {
    while (!a.empty() || !b.empty()) {
        const auto partOfA = takePart(a);
        const auto order = compareParts(partOfA, takePart(b));
        if (order != std::weak_ordering::equivalent) {
            return order;
        }
    }
    return std::weak_ordering::equivalent;
}

} // namespace nocta
