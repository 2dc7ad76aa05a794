#pragma once

#include "backends/linux/IniDocument.h"
#include "platform/DefaultsStore.h"

#include <filesystem>
#include <utility>

namespace nocta {

/// The defaults store as an INI file. Every change replaces the file atomically, so a process
/// killed at any moment leaves a complete earlier or later state; `synchronize` waits until it is
/// on the disk.
///
/// A file that cannot be read as INI is moved aside with the first write, under a name that is not
/// taken yet; what could be read of it counts. Where the file cannot be written the values in
/// memory go on; one line on standard error says so, once. What somebody else writes to the file
/// meanwhile is read at the next start, unless a change has replaced it by then.
class IniDefaultsStore final : public DefaultsStore {
public:
    explicit IniDefaultsStore(std::filesystem::path file);

    void registerDefaults(const DefaultsMap& defaults) override {
        table_.registerDefaults(defaults);
    }
    double doubleForKey(std::string_view key) const override { return table_.doubleForKey(key); }
    bool boolForKey(std::string_view key) const override { return table_.boolForKey(key); }
    std::int64_t integerForKey(std::string_view key) const override {
        return table_.integerForKey(key);
    }
    std::optional<std::string> stringForKey(std::string_view key) const override {
        return table_.stringForKey(key);
    }
    std::optional<DefaultsData> dataForKey(std::string_view key) const override {
        return table_.dataForKey(key);
    }
    void setDouble(double value, std::string_view key) override { set(value, key); }
    void setBool(bool value, std::string_view key) override { set(value, key); }
    void setInteger(std::int64_t value, std::string_view key) override { set(value, key); }
    void setObject(std::string_view value, std::string_view key) override {
        set(std::string(value), key);
    }
    void setObject(DefaultsData value, std::string_view key) override {
        set(std::move(value), key);
    }
    void removeObjectForKey(std::string_view key) override;
    void synchronize() override;

private:
    void load();
    void set(DefaultsValue value, std::string_view key);
    void write();
    bool replaceFile(const std::string& temporary);

    std::filesystem::path file_;
    DefaultsTable table_;
    IniDocument document_;
    bool mustMoveAside_ = false;
    bool isWritten_ = true; ///< whether the file holds what memory holds
    bool failureIsSaid_ = false;
};

} // namespace nocta
