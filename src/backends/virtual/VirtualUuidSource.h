#pragma once

#include "platform/UuidSource.h"

#include <cstdint>
#include <random>

namespace nocta {

/// Generates the same identifiers in every run.
class VirtualUuidSource final : public UuidSource {
public:
    explicit VirtualUuidSource(std::uint32_t seed = 1) : random_(seed) {}

    Uuid makeUuid() override {
        std::array<std::uint8_t, 16> bytes{};
        for (auto& byte : bytes) {
            byte = static_cast<std::uint8_t>(random_());
        }
        return Uuid::fromRandomBytes(bytes);
    }

private:
    std::mt19937 random_;
};

} // namespace nocta
