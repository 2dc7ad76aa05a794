#pragma once

#include "backends/linux/GrayscaleFilter.h"
#include "platform/DisplayFilter.h"
#include "platform/DynamicLibraries.h"

#include <memory>

namespace nocta {

/// The display filter of a Linux session, on top of the one way that the session has to turn gray.
/// On macOS the entry point that applies a change comes from a library that is loaded at run time.
/// The ports keep that shape on purpose, so that the service looks for the entry point in the same
/// way everywhere: here the library's name stands for the session's way to turn gray, and opening
/// it succeeds only if there is one.
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
