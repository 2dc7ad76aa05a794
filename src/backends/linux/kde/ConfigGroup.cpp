#include "backends/linux/kde/ConfigGroup.h"

#include <algorithm>
#include <cstddef>

namespace nocta {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr auto space = " \t\r";
    const auto start = std::min(text.find_first_not_of(space), text.size());
    return text.substr(start, text.find_last_not_of(space) + 1 - start);
}

/// Returns nullopt if the line is not an entry with this key.
std::optional<std::string_view> valueIn(std::string_view line, std::string_view key) {
    const auto equals = line.find('=');
    return equals != std::string_view::npos && trimmed(line.substr(0, equals)) == key
               ? std::optional(trimmed(line.substr(equals + 1)))
               : std::nullopt;
}

} // namespace

ConfigGroup::ConfigGroup(std::string_view text, std::string_view name)
    : header_("[" + std::string(name) + "]") {
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        lines_.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

/// Returns, for each line, whether it is inside the group. Headers are not inside.
std::vector<bool> ConfigGroup::membership() const {
    std::vector<bool> membership;
    auto isInside = false;
    for (const auto& line : lines_) {
        const auto isHeader = trimmed(line).starts_with('[');
        isInside = isHeader ? trimmed(line) == header_ : isInside;
        membership.push_back(isInside && !isHeader);
    }
    return membership;
}

std::optional<std::string> ConfigGroup::value(std::string_view key) const {
    const auto isInside = membership();
    for (auto i = lines_.size(); i-- > 0;) {
        if (const auto value = valueIn(lines_[i], key); isInside[i] && value) {
            return std::string(*value);
        }
    }
    return std::nullopt;
}

void ConfigGroup::set(std::string_view key, const std::optional<std::string>& value) {
    const auto isInside = membership();
    for (auto i = lines_.size(); i-- > 0;) {
        if (isInside[i] && valueIn(lines_[i], key)) {
            lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
    auto header = std::ranges::find(lines_, header_, trimmed);
    if (value) {
        header = header == lines_.end() ? lines_.insert(header, header_) : header;
        lines_.insert(header + 1, std::string(key) + "=" + *value);
    } else if (header != lines_.end() && std::ranges::count(membership(), true) == 0) {
        lines_.erase(header);
    }
}

std::string ConfigGroup::text() const {
    std::string text;
    for (const auto& line : lines_) {
        text += line + "\n";
    }
    return text;
}

} // namespace nocta
