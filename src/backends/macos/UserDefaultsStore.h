#pragma once

#include "backends/macos/Strings.h"
#include "platform/DefaultsStore.h"

#include <variant>

namespace nocta {

/// The system's user defaults. The getters convert more than `DefaultsTable` does: they read a
/// number as text and text as a number. This matters only for values that were set by hand.
class UserDefaultsStore final : public DefaultsStore {
public:
    void registerDefaults(const DefaultsMap& defaults) override {
        NSMutableDictionary<NSString*, id>* const dictionary = [NSMutableDictionary dictionary];
        for (const auto& [key, value] : defaults) {
            dictionary[nsString(key)] = std::visit(ToObject{}, value);
        }
        [userDefaults_ registerDefaults:dictionary];
    }

    double doubleForKey(std::string_view key) const override {
        return [userDefaults_ doubleForKey:nsString(key)];
    }
    bool boolForKey(std::string_view key) const override {
        return [userDefaults_ boolForKey:nsString(key)];
    }
    std::int64_t integerForKey(std::string_view key) const override {
        return [userDefaults_ integerForKey:nsString(key)];
    }
    std::optional<std::string> stringForKey(std::string_view key) const override {
        NSString* const string = [userDefaults_ stringForKey:nsString(key)];
        return string != nil ? std::optional(stdString(string)) : std::nullopt;
    }
    std::optional<DefaultsData> dataForKey(std::string_view key) const override {
        NSData* const data = [userDefaults_ dataForKey:nsString(key)];
        if (data == nil) {
            return std::nullopt;
        }
        const auto* const bytes = static_cast<const std::uint8_t*>(data.bytes);
        return DefaultsData{{bytes, bytes + data.length}};
    }

    void setDouble(double value, std::string_view key) override {
        [userDefaults_ setDouble:value forKey:nsString(key)];
    }
    void setBool(bool value, std::string_view key) override {
        [userDefaults_ setBool:value forKey:nsString(key)];
    }
    void setInteger(std::int64_t value, std::string_view key) override {
        [userDefaults_ setInteger:static_cast<NSInteger>(value) forKey:nsString(key)];
    }
    void setObject(std::string_view value, std::string_view key) override {
        [userDefaults_ setObject:nsString(value) forKey:nsString(key)];
    }
    void setObject(DefaultsData value, std::string_view key) override {
        [userDefaults_ setObject:nsData(value) forKey:nsString(key)];
    }
    void removeObjectForKey(std::string_view key) override {
        [userDefaults_ removeObjectForKey:nsString(key)];
    }
    void synchronize() override { [userDefaults_ synchronize]; }

private:
    static NSData* nsData(const DefaultsData& data) {
        return [NSData dataWithBytes:data.bytes.data() length:data.bytes.size()];
    }

    /// Converts a value to a property-list object.
    struct ToObject {
        id operator()(bool value) const { return [NSNumber numberWithBool:value]; }
        id operator()(std::int64_t value) const { return [NSNumber numberWithLongLong:value]; }
        id operator()(double value) const { return [NSNumber numberWithDouble:value]; }
        id operator()(const std::string& value) const { return nsString(value); }
        id operator()(const DefaultsData& value) const { return nsData(value); }
    };

    NSUserDefaults* userDefaults_ = NSUserDefaults.standardUserDefaults;
};

} // namespace nocta
