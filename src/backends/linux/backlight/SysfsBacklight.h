#pragma once

#include "platform/Backlight.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace nocta {

/// The backlights of built-in displays as the kernel shows them in `<sysfs>/class/backlight`; see
/// `backlightDevice`. A device's file is written where that is allowed; otherwise the session's
/// seat manager is asked to, without waiting for its answer.
class SysfsBacklight final : public Backlight {
public:
    /// The name that the display server gives to a display's output, or nothing.
    using OutputName = std::function<std::string(DisplayId)>;
    /// Asks for a raw level of the backlight device of that name; false where nobody can be asked.
    using SessionWriter = std::function<bool(const std::string& device, std::uint32_t level)>;

    SysfsBacklight(Displays& displays, OutputName outputName, SessionWriter sessionWriter,
                   std::filesystem::path sysfs = "/sys");

    Status getBrightness(DisplayId display, float& level) override;
    Status setBrightness(DisplayId display, float level) override;

private:
    /// Looked up each time, as drivers come and go.
    std::optional<std::filesystem::path> device(DisplayId display) const;

    Displays& displays_;
    OutputName outputName_;
    SessionWriter sessionWriter_;
    std::filesystem::path sysfs_;
};

/// Writes through logind's SetBrightness on the system bus, for the session of this process.
bool setBrightnessThroughLogind(const std::string& device, std::uint32_t level);

} // namespace nocta
