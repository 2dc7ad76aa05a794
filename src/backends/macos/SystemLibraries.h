#pragma once

#include "platform/DynamicLibraries.h"

#include <dlfcn.h>
#include <string>

namespace nocta {

/// Looks up the entry point that applies display filter changes immediately.
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
