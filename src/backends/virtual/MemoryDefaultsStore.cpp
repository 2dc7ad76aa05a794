#include "backends/virtual/MemoryDefaultsStore.h"

#include <utility>

namespace nocta {

void MemoryDefaultsStore::registerDefaults(const DefaultsMap& defaults) {
    record("registerDefaults", std::to_string(defaults.size()));
    table.registerDefaults(defaults);
}

double MemoryDefaultsStore::doubleForKey(std::string_view key) const {
    record("doubleForKey", key);
    return table.doubleForKey(key);
}

bool MemoryDefaultsStore::boolForKey(std::string_view key) const {
    record("boolForKey", key);
    return table.boolForKey(key);
}

std::int64_t MemoryDefaultsStore::integerForKey(std::string_view key) const {
    record("integerForKey", key);
    return table.integerForKey(key);
}

std::optional<std::string> MemoryDefaultsStore::stringForKey(std::string_view key) const {
    record("stringForKey", key);
    return table.stringForKey(key);
}

std::optional<DefaultsData> MemoryDefaultsStore::dataForKey(std::string_view key) const {
    record("dataForKey", key);
    return table.dataForKey(key);
}

void MemoryDefaultsStore::setDouble(double value, std::string_view key) {
    record("setDouble", key);
    table.set(key, value);
}

void MemoryDefaultsStore::setBool(bool value, std::string_view key) {
    record("setBool", key);
    table.set(key, value);
}

void MemoryDefaultsStore::setInteger(std::int64_t value, std::string_view key) {
    record("setInteger", key);
    table.set(key, value);
}

void MemoryDefaultsStore::setObject(std::string_view value, std::string_view key) {
    record("setObject", key);
    table.set(key, std::string(value));
}

void MemoryDefaultsStore::setObject(DefaultsData value, std::string_view key) {
    record("setObject", key);
    table.set(key, std::move(value));
}

void MemoryDefaultsStore::removeObjectForKey(std::string_view key) {
    record("removeObjectForKey", key);
    table.remove(key);
}

void MemoryDefaultsStore::synchronize() {
    trace_.record("synchronize");
}

void MemoryDefaultsStore::record(std::string_view operation, std::string_view key) const {
    trace_.record(std::string(operation) + " " + std::string(key));
}

} // namespace nocta
