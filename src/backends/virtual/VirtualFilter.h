#pragma once

#include "backends/virtual/Trace.h"
#include "platform/DisplayFilter.h"
#include "platform/DynamicLibraries.h"

#include <cstdint>
#include <string>

namespace nocta {

/// The screen's filter, in memory, and the library that applies changes to the filter.
class VirtualFilter final : public DisplayFilter, public DynamicLibraries {
public:
    explicit VirtualFilter(Trace& trace) : trace_(trace) {}

    // For tests: the system's features, and what the user sees.
    bool hasLibrary = true;
    bool hasEntryPoint = true;
    std::int32_t type = 0;
    bool isOn = false;

    // For the program: the functions of the port.
    Handle open(std::string_view path) override {
        trace_.record("open " + std::string(path));
        return hasLibrary ? 1 : 0;
    }
    EntryPoint symbol(Handle /*library*/, std::string_view name) override {
        trace_.record("symbol " + std::string(name));
        if (!hasEntryPoint) {
            return {};
        }
        return [this](std::int32_t value) {
            trace_.record("universalAccessDStart " + std::to_string(value));
        };
    }
    void close(Handle library) override { trace_.record("close " + std::to_string(library)); }
    void setType(std::int32_t category, std::int32_t newType) override {
        trace_.record("setType " + std::to_string(category) + " " + std::to_string(newType));
        type = newType;
    }
    void setCategoryEnabled(std::int32_t category, bool enabled) override {
        trace_.record("setCategoryEnabled " + std::to_string(category) + (enabled ? " 1" : " 0"));
        isOn = enabled;
    }
    std::int32_t getType(std::int32_t /*category*/) override { return type; }
    bool getCategoryEnabled(std::int32_t /*category*/) override { return isOn; }

private:
    Trace& trace_;
};

} // namespace nocta
