#pragma once

#include "base/Checked.h"
#include "base/Published.h"
#include "base/Uuid.h"
#include "platform/DefaultsStore.h"
#include "settings/MenuBarIcon.h"
#include "settings/SettingGroup.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace nocta {

/// These overloads read and write each type of setting in the defaults store.
void load(const DefaultsStore& store, std::string_view key, double& value);
void load(const DefaultsStore& store, std::string_view key, bool& value);
void load(const DefaultsStore& store, std::string_view key, std::int64_t& value);
void load(const DefaultsStore& store, std::string_view key, MenuBarIcon& value);
void load(const DefaultsStore& store, std::string_view key, std::optional<Uuid>& value);

void save(DefaultsStore& store, std::string_view key, double value);
void save(DefaultsStore& store, std::string_view key, bool value);
void save(DefaultsStore& store, std::string_view key, std::int64_t value);
void save(DefaultsStore& store, std::string_view key, MenuBarIcon value);
void save(DefaultsStore& store, std::string_view key, const std::optional<Uuid>& value);

/// Returns the value to register as the default, or `std::nullopt` if the setting has no default.
template <class T>
std::optional<DefaultsValue> registeredValue(const T& value) {
    return value;
}
inline std::optional<DefaultsValue> registeredValue(MenuBarIcon value) {
    return std::string(rawValue(value));
}
inline std::optional<DefaultsValue> registeredValue(const std::optional<Uuid>& value) {
    return value ? std::optional<DefaultsValue>(value->toString()) : std::nullopt;
}

/// A published value that is stored under a key in the defaults store. `set` publishes the value
/// first and then stores it, so that if a subscriber calls `set` again, the last value is stored. A
/// setting is a member of a `SettingGroup`; see the example there.
template <class T>
class Setting final : public AnySetting {
public:
    Setting(SettingGroup& group, std::string_view key, T defaultValue, const ResetPlace& place = {})
        : store_(group.userDefaults()), key_(key), default_(std::move(defaultValue)),
          published_(default_) {
        group.add(*this, place);
    }

    const T& get() const { return published_.get(); }

    void set(T value) {
        published_.set(std::move(value));
        save(store_, key_, published_.get());
    }

    /// For a `FaultContext`: lets the message name this setting if its value causes a fault.
    Origin origin() const { return {.key = key_, .value = get()}; }

    Subscription subscribe(std::function<void(const T&)> callback) {
        return published_.subscribe(std::move(callback));
    }

    void addDefault(DefaultsMap& defaults) const override {
        if (auto value = registeredValue(default_)) {
            defaults.insert_or_assign(std::string(key_), *std::move(value));
        }
    }
    void load() override {
        T value{};
        nocta::load(store_, key_, value);
        published_.set(std::move(value)); // there are no subscribers yet
    }
    void reset() override { set(default_); }

private:
    DefaultsStore& store_;
    std::string_view key_;
    T default_;
    Published<T> published_;
};

} // namespace nocta
