#pragma once

#include "base/RunLoop.h"
#include "base/SteppedAnimation.h"
#include "display/GammaController.h"
#include "platform/DisplayFilter.h"
#include "platform/DynamicLibraries.h"

#include <functional>

namespace nocta {

/// Turns every display black and white with the desktop's own filter. That switch is abrupt, so on
/// the way in the colour tint of the gamma tables is faded out first, and on the way out it is
/// faded back in. Without the entry point that makes the filter take effect at once, nothing is
/// done. It lives as long as the process.
class GrayscaleService {
public:
    /// Recognises a filter that the user has switched on elsewhere.
    GrayscaleService(GammaController& gammaController, DynamicLibraries& libraries,
                     DisplayFilter& filter, RunLoop& runLoop);
    GrayscaleService(const GrayscaleService&) = delete;
    GrayscaleService& operator=(const GrayscaleService&) = delete;

    static GrayscaleService& shared();

    bool isEnabled() const { return isEnabled_; }
    bool isAvailable() const { return static_cast<bool>(universalAccessDStart_); }

    /// Switches the filter on without a fade.
    void enable();

    /// Switches with a fade; a fade that is running is replaced, and its completion never runs.
    void setGrayscale(bool on);

    /// Fades the colour tint of the gamma tables, 1.0 full colour – 0.0 gray, in sixteen values
    /// over 0.3 seconds: `from` at once, and then fifteen steps of which the last is `to`. It
    /// replaces a fade that is running, whose completion never runs.
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
