#pragma once

#include "backends/linux/GrayscaleFilter.h"
#include "backends/linux/process/HelperProcess.h"

#include <filesystem>

namespace nocta {

/// Turns the screen gray with the magnifier of GNOME Shell, at magnification 1 and without
/// saturation. A helper process, `nocta-magnifier`, takes care of the user's own settings: it saves
/// them, changes them, and restores them on request or when this process dies.
class MagnifierFilter final : public GrayscaleFilter {
public:
    /// The helper saves the user's settings in `stateFile` while its own settings are in effect.
    explicit MagnifierFilter(std::filesystem::path stateFile);
    MagnifierFilter(const MagnifierFilter&) = delete;
    MagnifierFilter& operator=(const MagnifierFilter&) = delete;
    ~MagnifierFilter() override;

    /// Whether this session runs GNOME Shell and its settings are installed.
    bool isAvailable() const { return isAvailable_; }

    bool isOn() override { return isOn_; }
    void setOn(bool on) override;

private:
    bool start();
    void turnGray();
    void receive();

    std::filesystem::path stateFile_;
    bool isAvailable_ = false;
    bool isOn_ = false;
    bool isOurs_ = false; ///< this filter made the screen gray
    int replacements_ = 0;
    HelperProcess helper_;
};

} // namespace nocta
