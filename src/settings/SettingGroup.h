#pragma once

#include "platform/DefaultsStore.h"

#include <variant>
#include <vector>

namespace nocta {

/// The interface through which a `SettingGroup` uses its settings, whatever their type.
class AnySetting {
public:
    virtual ~AnySetting() = default;

    /// Adds the default value to `defaults` if the setting has one.
    virtual void addDefault(DefaultsMap& defaults) const = 0;

    /// Reads the stored value without writing it back.
    virtual void load() = 0;

    virtual void reset() = 0;
};

/// A reset does not change the setting.
struct NeverReset {};

/// The setting is reset just before another setting of the group.
struct ResetBefore {
    const AnySetting& next;
};

/// The setting's place in the order in which a reset writes the settings. `std::monostate` means
/// its place in the order of declaration.
using ResetPlace = std::variant<std::monostate, NeverReset, ResetBefore>;

/// The settings in one defaults store, in order of declaration. A derived class declares its
/// settings as members, which register themselves, and calls `load` in its constructor:
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
