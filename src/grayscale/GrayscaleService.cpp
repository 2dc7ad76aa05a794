#include "grayscale/GrayscaleService.h"

#include <chrono>
#include <cstdint>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr std::int32_t colorCategory = 1;
constexpr std::int32_t grayscaleType = 1;
constexpr std::int32_t filtersChanged = 8; // means that the filters have changed

constexpr Duration animationDuration = 300ms;
constexpr int animationSteps = 15;

constexpr float fullColor = 1.0F;
constexpr float gray = 0.0F;

} // namespace

GrayscaleService::GrayscaleService(GammaController& gammaController, DynamicLibraries& libraries,
                                   DisplayFilter& filter, RunLoop& runLoop)
    : gammaController_(gammaController), filter_(filter), runLoop_(runLoop) {
    const auto library = libraries.open("/usr/lib/libUniversalAccess.dylib");
    if (library == 0) {
        return;
    }
    universalAccessDStart_ = libraries.symbol(library, "_UniversalAccessDStart");
    if (!isAvailable()) {
        libraries.close(library);
        return;
    }
    isEnabled_ = filter_.getCategoryEnabled(colorCategory) &&
                 filter_.getType(colorCategory) == grayscaleType;
}

void GrayscaleService::enable() {
    if (isAvailable()) {
        switchFilterOn();
        isEnabled_ = true;
    }
}

void GrayscaleService::setGrayscale(bool on) {
    if (!isAvailable()) {
        return;
    }
    isEnabled_ = on;
    if (on) {
        animateSaturation(fullColor, gray, [this] {
            switchFilterOn();
            gammaController_.setSaturation(fullColor); // the filter removes the color now
        });
    } else {
        switchFilterOff();
        animateSaturation(gray, fullColor);
    }
}

void GrayscaleService::switchFilterOn() {
    filter_.setType(colorCategory, grayscaleType);
    filter_.setCategoryEnabled(colorCategory, true);
    universalAccessDStart_(filtersChanged);
}

void GrayscaleService::switchFilterOff() {
    filter_.setCategoryEnabled(colorCategory, false);
    universalAccessDStart_(filtersChanged);
}

void GrayscaleService::animateSaturation(float from, float to, std::function<void()> completion) {
    animationTimer_.invalidate();
    gammaController_.setSaturation(from);
    animationTimer_.start(
        runLoop_, animationSteps, animationDuration / animationSteps,
        [this, from, to](int step) {
            gammaController_.setSaturation(
                from + (to - from) * (static_cast<float>(step) / float{animationSteps}));
        },
        std::move(completion));
}

} // namespace nocta
