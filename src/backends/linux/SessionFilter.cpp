#include "backends/linux/SessionFilter.h"

#include <utility>

namespace nocta {

namespace {
constexpr std::int32_t colorCategory = 1;
constexpr std::int32_t grayscaleType = 1;
constexpr DynamicLibraries::Handle onlyLibrary = 1;
} // namespace

SessionFilter::SessionFilter(std::unique_ptr<GrayscaleFilter> grayscale)
    : grayscale_(std::move(grayscale)) {
    if (grayscale_ != nullptr && grayscale_->isOn()) {
        type_ = grayscaleType;
        isEnabled_ = true;
    }
}

void SessionFilter::setType(std::int32_t category, std::int32_t type) {
    if (category == colorCategory) {
        type_ = type;
    }
}

void SessionFilter::setCategoryEnabled(std::int32_t category, bool enabled) {
    if (category == colorCategory) {
        isEnabled_ = enabled;
    }
}

std::int32_t SessionFilter::getType(std::int32_t category) {
    return category == colorCategory ? type_ : 0;
}

bool SessionFilter::getCategoryEnabled(std::int32_t category) {
    return category == colorCategory && isEnabled_;
}

DynamicLibraries::Handle SessionFilter::open(std::string_view path) {
    return grayscale_ != nullptr && path == "/usr/lib/libUniversalAccess.dylib" ? onlyLibrary : 0;
}

DynamicLibraries::EntryPoint SessionFilter::symbol(Handle library, std::string_view name) {
    if (library != onlyLibrary || name != "_UniversalAccessDStart") {
        return {};
    }
    return
        [this](std::int32_t /*what*/) { grayscale_->setOn(isEnabled_ && type_ == grayscaleType); };
}

} // namespace nocta
