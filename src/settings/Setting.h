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

/// How each type of setting is read from and written to the defaults store.
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

/// The value to register as the default; none for an absent one.
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

/// A published value with a key, which is written through to the defaults store. A write is
/// published first and then persisted, so that if a subscriber writes again, the last value is
/// persisted. It is a member of a `SettingGroup`, whose comment shows a sample.
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

    /// Names the setting in the message of a fault that its value causes.
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
        published_.set(std::move(value)); // nobody has subscribed yet
    }
    void reset() override { set(default_); }

private:
    DefaultsStore& store_;
    std::string_view key_;
    T default_;
    Published<T> published_;
};

} // namespace nocta
