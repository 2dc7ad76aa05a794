#pragma once

#include "base/Uuid.h"

namespace nocta {

/// New random identifiers. It belongs to the desktop so that a virtual one can repeat itself.
class UuidSource {
public:
    virtual ~UuidSource() = default;

    virtual Uuid makeUuid() = 0;
};

} // namespace nocta
