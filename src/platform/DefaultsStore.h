#pragma once

#include "base/DefaultsTable.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nocta {

/// The user's persistent values by key, with the rules of `DefaultsTable` for the getters. A getter
/// returns a new value at once; the disk gets it at the end of the run-loop turn. `synchronize`
/// waits until everything is written. A failure to write is not reported to the caller, and the
/// values in memory stay valid. Stands for NSUserDefaults, function by function.
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
