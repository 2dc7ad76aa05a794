#pragma once

#include "base/RunLoop.h"
#include "base/SteppedAnimation.h"
#include "display/GammaController.h"
#include "platform/DisplayFilter.h"
#include "platform/DynamicLibraries.h"

#include <functional>

namespace nocta {

/// Turns every display gray with the desktop's own filter. The filter switches abruptly, so the
/// service fades out the tint of the gamma tables before it switches the filter on, and fades it
/// back in after it switches the filter off. Does nothing if the system lacks the entry point that
/// makes the filter take effect immediately. The service exists for the lifetime of the process.
class GrayscaleService {
public:
    /// Detects whether the user has switched the filter on elsewhere.
    GrayscaleService(GammaController& gammaController, DynamicLibraries& libraries,
                     DisplayFilter& filter, RunLoop& runLoop);
    GrayscaleService(const GrayscaleService&) = delete;
    GrayscaleService& operator=(const GrayscaleService&) = delete;

    static GrayscaleService& shared();

    bool isEnabled() const { return isEnabled_; }
    bool isAvailable() const { return static_cast<bool>(universalAccessDStart_); }

    /// Switches the filter on without a fade.
    void enable();

    /// Switches the filter on or off with a fade. Replaces a running fade, whose completion is then
    /// never called.
    void setGrayscale(bool on);

    /// Fades the saturation of the gamma tables, from 0.0 (gray) to 1.0 (full color), over 0.3
    /// seconds: it sets `from` immediately, and then takes fifteen steps, the last of which is
    /// `to`. Replaces a running fade, whose completion is then never called.
    void animateSaturation(float from, float to, std::function<void()> completion = {});

private:
    void switchFilterOn();
    void switchFilterOff();

    bool isEnabled_ = false;
    DynamicLibraries::EntryPoint universalAccessDStart_;
    GammaController& gammaController_;
    DisplayFilter& filter_;
    RunLoop& runLoop_;
    SteppedAnimation animationTimer_;
};

} // namespace nocta
