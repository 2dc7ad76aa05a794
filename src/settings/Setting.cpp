#include "settings/Setting.h"

namespace nocta {

void load(const DefaultsStore& store, std::string_view key, double& value) {
    value = store.doubleForKey(key);
}

void load(const DefaultsStore& store, std::string_view key, bool& value) {
    value = store.boolForKey(key);
}

void load(const DefaultsStore& store, std::string_view key, std::int64_t& value) {
    value = store.integerForKey(key);
}

void load(const DefaultsStore& store, std::string_view key, MenuBarIcon& value) {
    const auto stored = store.stringForKey(key);
    value = menuBarIconFromRawValue(stored.value_or("")).value_or(MenuBarIcon::eye);
}

void load(const DefaultsStore& store, std::string_view key, std::optional<Uuid>& value) {
    const auto stored = store.stringForKey(key);
    value = stored ? Uuid::parse(*stored) : std::nullopt;
}

void save(DefaultsStore& store, std::string_view key, double value) {
    store.setDouble(value, key);
}

void save(DefaultsStore& store, std::string_view key, bool value) {
    store.setBool(value, key);
}

void save(DefaultsStore& store, std::string_view key, std::int64_t value) {
    store.setInteger(value, key);
}

void save(DefaultsStore& store, std::string_view key, MenuBarIcon value) {
    store.setObject(rawValue(value), key);
}

void save(DefaultsStore& store, std::string_view key, const std::optional<Uuid>& value) {
    if (value) {
        store.setObject(value->toString(), key);
    } else {
        store.removeObjectForKey(key);
    }
}

} // namespace nocta
