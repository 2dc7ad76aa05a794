#pragma once

#include "platform/Backlight.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace nocta {

/// The backlight of the built-in display as the kernel shows it in `<sysfs>/class/backlight`: the
/// device of the best type, firmware before platform before raw. Its file is written where that is
/// allowed; otherwise the session's seat manager is asked to, without waiting for its answer.
class SysfsBacklight final : public Backlight {
public:
    /// Asks for a raw level of the backlight device of that name; false where nobody can be asked.
    using SessionWriter = std::function<bool(const std::string& device, std::uint32_t level)>;

    SysfsBacklight(Displays& displays, SessionWriter sessionWriter,
                   std::filesystem::path sysfs = "/sys");

    Status getBrightness(DisplayId display, float& level) override;
    Status setBrightness(DisplayId display, float level) override;

private:
    /// Looked up each time, as drivers come and go.
    std::optional<std::filesystem::path> device() const;

    Displays& displays_;
    SessionWriter sessionWriter_;
    std::filesystem::path sysfs_;
};

/// Writes through logind's SetBrightness on the system bus, for the session of this process.
bool setBrightnessThroughLogind(const std::string& device, std::uint32_t level);

} // namespace nocta
