#pragma once

#include "platform/DefaultsStore.h"

#include <variant>
#include <vector>

namespace nocta {

/// What a group of settings does with each of them, whatever its type.
class AnySetting {
public:
    virtual ~AnySetting() = default;

    /// Adds the default, unless the setting is absent by default.
    virtual void addDefault(DefaultsMap& defaults) const = 0;

    /// Reads the stored value, without writing back.
    virtual void load() = 0;

    virtual void reset() = 0;
};

/// Not part of a reset.
struct NeverReset {};

/// Reset just before another setting of the group.
struct ResetBefore {
    const AnySetting& next;
};

/// Where a reset writes a setting; by default in the order of the declarations.
using ResetPlace = std::variant<std::monostate, NeverReset, ResetBefore>;

/// The settings of one defaults store, in the order of their declarations. A derived class declares
/// them as members, each of which lists itself, and calls `load` when all are there:
///
///     class Sounds : SettingGroup {
///     public:
///         explicit Sounds(DefaultsStore& store) : SettingGroup(store) { load(); }
///         Setting<double> volume{*this, "volume", 0.5};
///     };
class SettingGroup {
public:
    SettingGroup(const SettingGroup&) = delete;
    SettingGroup& operator=(const SettingGroup&) = delete;

    void add(AnySetting& setting, const ResetPlace& place);
    DefaultsStore& userDefaults() { return userDefaults_; }

protected:
    explicit SettingGroup(DefaultsStore& userDefaults) : userDefaults_(userDefaults) {}
    ~SettingGroup() = default;

    /// Registers every default, and then reads every value.
    void load();
    void reset();

private:
    DefaultsStore& userDefaults_;
    std::vector<AnySetting*> loadOrder_;
    std::vector<AnySetting*> resetOrder_;
};

} // namespace nocta
