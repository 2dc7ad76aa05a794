#pragma once

#include "base/Uuid.h"

namespace nocta {

/// Makes random identifiers. It is a port so that the virtual desktop can make the same identifiers
/// in every run.
class UuidSource {
public:
    virtual ~UuidSource() = default;

    virtual Uuid makeUuid() = 0;
};

} // namespace nocta
