#pragma once

#include <cstdint>

namespace nocta {

/// The desktop's accessibility filters for the whole screen, by category and type. In category 1
/// (color), type 1 is grayscale. Corresponds to the MADisplayFilterPref functions on macOS.
class DisplayFilter {
public:
    virtual ~DisplayFilter() = default;

    virtual void setType(std::int32_t category, std::int32_t type) = 0;
    virtual void setCategoryEnabled(std::int32_t category, bool enabled) = 0;
    virtual std::int32_t getType(std::int32_t category) = 0;
    virtual bool getCategoryEnabled(std::int32_t category) = 0;
};

} // namespace nocta
