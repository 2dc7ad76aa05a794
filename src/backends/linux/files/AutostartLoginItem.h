#pragma once

#include "platform/LoginItem.h"

#include <filesystem>

namespace nocta {

/// A desktop entry in the folder whose programs the session starts (XDG Autostart). The desktops'
/// own tools switch an entry off by a key in it; such an entry is there and not enabled.
class AutostartLoginItem final : public LoginItem {
public:
    /// The entry's file, and the program that it starts, by its full path.
    AutostartLoginItem(std::filesystem::path entry, std::filesystem::path program);

    Status status() override;
    std::optional<std::string> registerItem() override;
    std::optional<std::string> unregisterItem() override;

private:
    std::filesystem::path entry_;
    std::filesystem::path program_;
};

} // namespace nocta
