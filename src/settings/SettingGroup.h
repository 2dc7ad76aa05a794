#pragma once

#include "platform/DefaultsStore.h"

#include <variant>
#include <vector>

namespace nocta {

/// What a `SettingGroup` needs from each setting, whatever its type.
class AnySetting {
public:
    virtual ~AnySetting() = default;

    /// Adds the default, unless the setting is absent by default.
    virtual void addDefault(DefaultsMap& defaults) const = 0;

    /// Reads the stored value without writing it back.
    virtual void load() = 0;

    virtual void reset() = 0;
};

/// The setting is not part of a reset.
struct NeverReset {};

/// The setting is reset just before another setting of the group.
struct ResetBefore {
    const AnySetting& next;
};

/// When a reset writes a setting; monostate is the order of the declarations.
using ResetPlace = std::variant<std::monostate, NeverReset, ResetBefore>;

/// The settings of one defaults store, in the order of their declarations. A derived class declares
/// them as members, which register themselves, and calls `load` in its constructor:
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

    /// Registers all defaults, then reads all values.
    void load();
    void reset();

private:
    DefaultsStore& userDefaults_;
    std::vector<AnySetting*> loadOrder_;
    std::vector<AnySetting*> resetOrder_;
};

} // namespace nocta
