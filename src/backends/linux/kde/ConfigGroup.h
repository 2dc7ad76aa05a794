#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nocta {

/// One group of entries in the text of a KDE configuration file. A value is the raw text after the
/// equals sign. All other text is preserved, including groups and escapes that GLib's key files and
/// Qt's settings cannot read. If a key appears more than once, the last entry is used, as in KDE.
class ConfigGroup {
public:
    ConfigGroup(std::string_view text, std::string_view name);

    std::optional<std::string> value(std::string_view key) const;

    /// If `value` is nullopt, removes the key, and also the group's header if the group has no
    /// lines left.
    void set(std::string_view key, const std::optional<std::string>& value);

    std::string text() const;

private:
    std::vector<bool> membership() const;

    std::string header_;
    std::vector<std::string> lines_;
};

} // namespace nocta
