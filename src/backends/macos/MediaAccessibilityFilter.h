#pragma once

#include "platform/DisplayFilter.h"

#include <cstdint>

// MediaAccessibility exports these functions without a header. The references are weak, that is,
// null on a system that no longer has the functions. With strong references, the program would not
// start on such a system.
extern "C" {
[[gnu::weak]] void MADisplayFilterPrefSetType(std::int32_t category, std::int32_t type);
[[gnu::weak]] void MADisplayFilterPrefSetCategoryEnabled(std::int32_t category,
                                                         std::int32_t enabled);
[[gnu::weak]] std::int32_t MADisplayFilterPrefGetType(std::int32_t category);
[[gnu::weak]] bool MADisplayFilterPrefGetCategoryEnabled(std::int32_t category);
}

namespace nocta {

/// The filters of the accessibility settings, which belong to the user and stay as they are when
/// the process ends. Calling a missing function does nothing and returns 0.
class MediaAccessibilityFilter final : public DisplayFilter {
public:
    void setType(std::int32_t category, std::int32_t type) override {
        if (MADisplayFilterPrefSetType != nullptr) {
            MADisplayFilterPrefSetType(category, type);
        }
    }
    void setCategoryEnabled(std::int32_t category, bool enabled) override {
        if (MADisplayFilterPrefSetCategoryEnabled != nullptr) {
            MADisplayFilterPrefSetCategoryEnabled(category, enabled ? 1 : 0);
        }
    }
    std::int32_t getType(std::int32_t category) override {
        return MADisplayFilterPrefGetType != nullptr ? MADisplayFilterPrefGetType(category) : 0;
    }
    bool getCategoryEnabled(std::int32_t category) override {
        return MADisplayFilterPrefGetCategoryEnabled != nullptr &&
               MADisplayFilterPrefGetCategoryEnabled(category);
    }
};

} // namespace nocta
