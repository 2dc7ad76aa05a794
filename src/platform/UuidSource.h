#pragma once

#include "base/Uuid.h"

namespace nocta {

/// Makes random identifiers. It is a port so that those of the virtual desktop are repeatable.
class UuidSource {
public:
    virtual ~UuidSource() = default;

    virtual Uuid makeUuid() = 0;
};

} // namespace nocta
