#pragma once

#include "backends/virtual/Trace.h"
#include "platform/DefaultsStore.h"

namespace nocta {

/// A defaults store in memory.
class MemoryDefaultsStore final : public DefaultsStore {
public:
    explicit MemoryDefaultsStore(Trace& trace) : trace_(trace) {}

    /// The stored values. Tests can read and prepare the values here. Direct writes to the table
    /// are not traced.
    DefaultsTable table;

    void registerDefaults(const DefaultsMap& defaults) override;
    double doubleForKey(std::string_view key) const override;
    bool boolForKey(std::string_view key) const override;
    std::int64_t integerForKey(std::string_view key) const override;
    std::optional<std::string> stringForKey(std::string_view key) const override;
    std::optional<DefaultsData> dataForKey(std::string_view key) const override;
    void setDouble(double value, std::string_view key) override;
    void setBool(bool value, std::string_view key) override;
    void setInteger(std::int64_t value, std::string_view key) override;
    void setObject(std::string_view value, std::string_view key) override;
    void setObject(DefaultsData value, std::string_view key) override;
    void removeObjectForKey(std::string_view key) override;
    void synchronize() override;

private:
    void record(std::string_view operation, std::string_view key) const;

    Trace& trace_;
};

} // namespace nocta
