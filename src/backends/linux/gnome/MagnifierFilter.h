#pragma once

#include "backends/linux/GrayscaleFilter.h"
#include "backends/linux/process/HelperProcess.h"

#include <filesystem>

namespace nocta {

/// Gray by the magnifier of GNOME's shell, at factor 1 and without saturation. What the user has
/// set in it is the business of a helper process, `nocta-magnifier`: it notes it, changes it, and
/// puts it back when it is told to or when this process dies.
class MagnifierFilter final : public GrayscaleFilter {
public:
    /// `stateFile` is where the helper notes the user's settings while they are not in force.
    explicit MagnifierFilter(std::filesystem::path stateFile);
    MagnifierFilter(const MagnifierFilter&) = delete;
    MagnifierFilter& operator=(const MagnifierFilter&) = delete;
    ~MagnifierFilter() override;

    /// Whether this session is run by GNOME's shell and its settings are installed.
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
    bool isOurs_ = false; ///< the screen is gray by this filter
    int replacements_ = 0;
    HelperProcess helper_;
};

} // namespace nocta
