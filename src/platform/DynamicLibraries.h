#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace nocta {

/// Libraries of the system that are looked up at run time.
class DynamicLibraries {
public:
    /// Stands for what dlopen gives; 0 is none.
    using Handle = std::uintptr_t;
    /// An entry point that takes one number; none where the library has no such symbol.
    using EntryPoint = std::function<void(std::int32_t)>;

    virtual ~DynamicLibraries() = default;

    /// Binds everything at once, as dlopen does with RTLD_NOW.
    virtual Handle open(std::string_view path) = 0;

    /// Stands for dlsym.
    virtual EntryPoint symbol(Handle library, std::string_view name) = 0;

    /// Stands for dlclose.
    virtual void close(Handle library) = 0;
};

} // namespace nocta
