#pragma once

#include "base/RunLoop.h"
#include "base/SteppedAnimation.h"
#include "display/GammaController.h"
#include "platform/DisplayFilter.h"
#include "platform/DynamicLibraries.h"

#include <functional>

namespace nocta {

/// Turns every display gray with the desktop's own filter. The filter switches abruptly, so the
/// color tint of the gamma tables is faded out before it is switched on, and faded back in after it
/// is switched off. Does nothing without the entry point that makes the filter take effect at once.
/// It lives as long as the process.
class GrayscaleService {
public:
    /// Detects a filter that the user has switched on elsewhere.
    GrayscaleService(GammaController& gammaController, DynamicLibraries& libraries,
                     DisplayFilter& filter, RunLoop& runLoop);
    GrayscaleService(const GrayscaleService&) = delete;
    GrayscaleService& operator=(const GrayscaleService&) = delete;

    static GrayscaleService& shared();

    bool isEnabled() const { return isEnabled_; }
    bool isAvailable() const { return static_cast<bool>(universalAccessDStart_); }

    /// Switches the filter on without a fade.
    void enable();

    /// Switches with a fade. It replaces a running fade, whose completion is then never called.
    void setGrayscale(bool on);

    /// Fades the saturation of the gamma tables, 1.0 full color – 0.0 gray, over 0.3 seconds:
    /// `from` at once, then fifteen steps, the last of which is `to`. It replaces a running fade,
    /// whose completion is then never called.
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
