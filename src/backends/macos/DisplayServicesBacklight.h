#pragma once

#include "platform/Backlight.h"

#include <dlfcn.h>

namespace nocta {

/// Uses a private framework that is looked up at run time and stays loaded. If the framework or one
/// of its functions is missing, every call fails.
class DisplayServicesBacklight final : public Backlight {
public:
    Status getBrightness(DisplayId display, float& level) override {
        return getBrightness_ != nullptr ? getBrightness_(display, &level) : statusFailure;
    }
    Status setBrightness(DisplayId display, float level) override {
        return setBrightness_ != nullptr ? setBrightness_(display, level) : statusFailure;
    }

private:
    using GetBrightness = int (*)(std::uint32_t display, float* level);
    using SetBrightness = int (*)(std::uint32_t display, float level);

    /// With a null handle, dlsym would search the whole program on some systems.
    void* symbol(const char* name) const {
        return framework_ != nullptr ? dlsym(framework_, name) : nullptr;
    }

    void* framework_ = dlopen(
        "/System/Library/PrivateFrameworks/DisplayServices.framework/DisplayServices", RTLD_LAZY);
    GetBrightness getBrightness_ =
        reinterpret_cast<GetBrightness>(symbol("DisplayServicesGetBrightness"));
    SetBrightness setBrightness_ =
        reinterpret_cast<SetBrightness>(symbol("DisplayServicesSetBrightness"));
};

} // namespace nocta
