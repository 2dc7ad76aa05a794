#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace nocta {

/// The name of a display's connector, such as "eDP-1". The kernel and the drivers of display
/// servers agree on the type, but format and count the number differently: "eDP-1" may be "eDP1",
/// "eDP-1-1" or "eDP" elsewhere.
class ConnectorName {
public:
    explicit ConnectorName(std::string_view name)
        : type_(typeOf(name)), number_(name.substr(name.find_last_not_of("0123456789") + 1)) {}

    /// The type of the connector, or empty if no built-in display uses this type.
    std::string_view type() const { return type_; }
    /// The last number in the name, or empty.
    std::string_view number() const { return number_; }
    bool isBuiltIn() const { return !type_.empty(); }

private:
    static std::string_view typeOf(std::string_view name) {
        constexpr std::array<std::string_view, 3> types = {"eDP", "LVDS", "DSI"};
        const auto* const type = std::ranges::find_if(
            types, [&](std::string_view start) { return name.starts_with(start); });
        return type == types.end() ? std::string_view() : *type;
    }

    std::string_view type_;
    std::string_view number_;
};

} // namespace nocta
