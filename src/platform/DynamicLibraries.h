#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace nocta {

/// System libraries that are opened at run time.
class DynamicLibraries {
public:
    /// Stands for what dlopen returns; 0 is none.
    using Handle = std::uintptr_t;
    /// A function that takes one number; empty if the library has no such symbol.
    using EntryPoint = std::function<void(std::int32_t)>;

    virtual ~DynamicLibraries() = default;

    /// Stands for dlopen with RTLD_NOW.
    virtual Handle open(std::string_view path) = 0;

    /// Stands for dlsym.
    virtual EntryPoint symbol(Handle library, std::string_view name) = 0;

    /// Stands for dlclose.
    virtual void close(Handle library) = 0;
};

} // namespace nocta
