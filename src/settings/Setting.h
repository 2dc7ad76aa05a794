#pragma once

#include "base/Checked.h"
#include "base/Published.h"
#include "base/Uuid.h"
#include "platform/DefaultsStore.h"
#include "settings/MenuBarIcon.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace nocta {

/// How each type of setting reads from and writes to the defaults store.
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

/// A published value with a key, written through to the defaults store. A write is published
/// first and then persisted, so that what a subscriber wrote meanwhile is what is persisted last.
template <class T>
class Setting {
public:
    /// Reads the stored value, without publishing or writing back.
    Setting(DefaultsStore& store, std::string_view key)
        : store_(store), key_(key), published_(loaded(store, key)) {}

    const T& get() const { return published_.get(); }

    void set(T value) {
        published_.set(std::move(value));
        save(store_, key_, published_.get());
    }

    /// For the message of a fault that its value leads to.
    Origin origin() const { return {.key = key_, .value = get()}; }

    Subscription subscribe(std::function<void(const T&)> callback) {
        return published_.subscribe(std::move(callback));
    }

private:
    static T loaded(const DefaultsStore& store, std::string_view key) {
        T value{};
        load(store, key, value);
        return value;
    }

    DefaultsStore& store_;
    std::string_view key_;
    Published<T> published_;
};

} // namespace nocta
