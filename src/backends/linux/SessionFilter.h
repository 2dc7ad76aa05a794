#pragma once

#include "backends/linux/GrayscaleFilter.h"
#include "platform/DisplayFilter.h"
#include "platform/DynamicLibraries.h"

#include <memory>

namespace nocta {

/// The display filter for Linux, which uses the session's `GrayscaleFilter`. On macOS, the entry
/// point that applies a change comes from a library that is loaded at run time. This class imitates
/// that library on purpose, so that the service looks for the entry point in the same way on every
/// desktop. Opening the library succeeds only if the session can turn its screen gray.
class SessionFilter final : public DisplayFilter, public DynamicLibraries {
public:
    /// `grayscale` is null if the session has no way to turn gray.
    explicit SessionFilter(std::unique_ptr<GrayscaleFilter> grayscale);

    void setType(std::int32_t category, std::int32_t type) override;
    void setCategoryEnabled(std::int32_t category, bool enabled) override;
    std::int32_t getType(std::int32_t category) override;
    bool getCategoryEnabled(std::int32_t category) override;

    Handle open(std::string_view path) override;
    EntryPoint symbol(Handle library, std::string_view name) override;
    void close(Handle /*library*/) override {}

private:
    std::unique_ptr<GrayscaleFilter> grayscale_;
    std::int32_t type_ = 0;
    bool isEnabled_ = false;
};

} // namespace nocta
