#pragma once

#include "base/DefaultsTable.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nocta {

/// Stores the user's persistent values by key. The getters follow the rules of `DefaultsTable`. A
/// getter returns a new value immediately; the store writes it to disk at the end of the run-loop
/// turn. `synchronize` waits until everything is written. If writing fails, the caller is not
/// notified, and the values in memory stay valid. Each function corresponds to an NSUserDefaults
/// method on macOS.
class DefaultsStore {
public:
    virtual ~DefaultsStore() = default;

    virtual void registerDefaults(const DefaultsMap& defaults) = 0;

    virtual double doubleForKey(std::string_view key) const = 0;
    virtual bool boolForKey(std::string_view key) const = 0;
    virtual std::int64_t integerForKey(std::string_view key) const = 0;
    virtual std::optional<std::string> stringForKey(std::string_view key) const = 0;
    virtual std::optional<DefaultsData> dataForKey(std::string_view key) const = 0;

    virtual void setDouble(double value, std::string_view key) = 0;
    virtual void setBool(bool value, std::string_view key) = 0;
    virtual void setInteger(std::int64_t value, std::string_view key) = 0;
    virtual void setObject(std::string_view value, std::string_view key) = 0;
    virtual void setObject(DefaultsData value, std::string_view key) = 0;
    virtual void removeObjectForKey(std::string_view key) = 0;

    virtual void synchronize() = 0;
};

} // namespace nocta
