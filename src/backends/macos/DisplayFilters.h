#pragma once

#include "platform/DisplayFilter.h"
#include "platform/DynamicLibraries.h"

#include <dlfcn.h>
#include <string>

// MediaAccessibility exports these without a header.
extern "C" {
void MADisplayFilterPrefSetType(std::int32_t category, std::int32_t type);
void MADisplayFilterPrefSetCategoryEnabled(std::int32_t category, std::int32_t enabled);
std::int32_t MADisplayFilterPrefGetType(std::int32_t category);
bool MADisplayFilterPrefGetCategoryEnabled(std::int32_t category);
}

namespace nocta {

/// The filters of the accessibility settings, which belong to the user and stay as they are when
/// the process ends.
class MediaAccessibilityFilter final : public DisplayFilter {
public:
    void setType(std::int32_t category, std::int32_t type) override {
        MADisplayFilterPrefSetType(category, type);
    }
    void setCategoryEnabled(std::int32_t category, bool enabled) override {
        MADisplayFilterPrefSetCategoryEnabled(category, enabled ? 1 : 0);
    }
    std::int32_t getType(std::int32_t category) override {
        return MADisplayFilterPrefGetType(category);
    }
    bool getCategoryEnabled(std::int32_t category) override {
        return MADisplayFilterPrefGetCategoryEnabled(category);
    }
};

/// Where the entry point is looked up that makes a change of the filters take effect at once.
class SystemLibraries final : public DynamicLibraries {
public:
    Handle open(std::string_view path) override {
        return reinterpret_cast<Handle>(dlopen(std::string(path).c_str(), RTLD_NOW));
    }
    EntryPoint symbol(Handle library, std::string_view name) override {
        return reinterpret_cast<void (*)(std::int32_t)>(
            dlsym(reinterpret_cast<void*>(library), std::string(name).c_str()));
    }
    void close(Handle library) override { dlclose(reinterpret_cast<void*>(library)); }
};

} // namespace nocta
