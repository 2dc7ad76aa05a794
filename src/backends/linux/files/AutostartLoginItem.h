#pragma once

#include "platform/LoginItem.h"

#include <filesystem>

namespace nocta {

/// A desktop entry in the XDG Autostart folder. The session starts the program of each entry there.
/// Desktop tools disable an entry by setting a key in it; such an entry exists but is not enabled.
class AutostartLoginItem final : public LoginItem {
public:
    /// The entry's file, and the full path of the program that it starts.
    AutostartLoginItem(std::filesystem::path entry, std::filesystem::path program);

    Status status() override;
    std::optional<std::string> registerItem() override;
    std::optional<std::string> unregisterItem() override;

private:
    std::filesystem::path entry_;
    std::filesystem::path program_;
};

} // namespace nocta
