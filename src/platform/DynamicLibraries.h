#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace nocta {

/// Opens system libraries at run time.
class DynamicLibraries {
public:
    /// Corresponds to the pointer that dlopen returns; 0 if the library could not be opened.
    using Handle = std::uintptr_t;
    /// A function that takes one number; empty if the library has no such symbol.
    using EntryPoint = std::function<void(std::int32_t)>;

    virtual ~DynamicLibraries() = default;

    /// Corresponds to dlopen with RTLD_NOW.
    virtual Handle open(std::string_view path) = 0;

    /// Corresponds to dlsym.
    virtual EntryPoint symbol(Handle library, std::string_view name) = 0;

    /// Corresponds to dlclose.
    virtual void close(Handle library) = 0;
};

} // namespace nocta
