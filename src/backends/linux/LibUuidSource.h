#pragma once

#include "platform/UuidSource.h"

#include <uuid/uuid.h>

namespace nocta {

/// Random identifiers from the operating system's random number generator.
class LibUuidSource final : public UuidSource {
public:
    Uuid makeUuid() override {
        Uuid uuid;
        uuid_generate_random(uuid.bytes.data());
        return uuid;
    }
};

} // namespace nocta
