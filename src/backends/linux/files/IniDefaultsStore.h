#pragma once

#include "backends/linux/files/IniDocument.h"
#include "base/Deferred.h"
#include "base/RunLoop.h"
#include "platform/DefaultsStore.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace nocta {

/// The defaults store as an INI file. A new value takes effect immediately. The file is written
/// once at the end of the run-loop turn, after everything that the turn has posted for the screen,
/// no matter how many values were set. The file is replaced atomically: no matter when the process
/// is killed, the file has the content from the end of some turn. `synchronize` writes pending
/// changes and waits until they are on disk; the destructor writes pending changes.
///
/// A file that cannot be read as INI is moved aside on the first write, under an unused name. The
/// values that could be read from the file are used. If the file cannot be written, the values stay
/// in memory, and one line about the error is printed to standard error.
///
/// The values in memory are those read at startup plus this process's own changes. Changes that
/// another process writes to the file take effect on the next launch. A write changes only the keys
/// that this process has set or removed since its last write, so for each key the last writer wins.
/// A lock next to the file allows one writer at a time.
class IniDefaultsStore final : public DefaultsStore {
public:
    /// How long a write waits for another process's write, which takes less than a millisecond. A
    /// suspended writer must not block the run loop.
    static constexpr auto maxLockWait = std::chrono::milliseconds(50);

    IniDefaultsStore(std::filesystem::path file, RunLoop& runLoop,
                     std::chrono::milliseconds lockTimeout = maxLockWait);
    IniDefaultsStore(const IniDefaultsStore&) = delete;
    IniDefaultsStore& operator=(const IniDefaultsStore&) = delete;
    ~IniDefaultsStore() override { writeChanges(); }

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
    struct Content;

    Content read();
    std::filesystem::path lockFile() const;
    void removeLeftTemporaries() const;
    void set(DefaultsValue value, std::string_view key);
    void change(std::string_view key, std::optional<DefaultsValue> value);
    void writeChanges();
    bool replaceFile() const;
    bool putInPlace(const std::string& temporary) const;

    std::filesystem::path file_;
    DefaultsTable table_;
    IniDocument document_; ///< the file as this process last read or wrote it
    std::map<std::string, std::optional<DefaultsValue>, std::less<>> changes_; ///< not written yet
    std::chrono::milliseconds lockTimeout_;
    bool isLockFree_ = true; ///< false after a write has timed out on the lock
    bool mustMoveAside_ = false;
    bool failureIsSaid_ = false;
    Deferred write_;
    Deferred endTurn_; ///< posts the write after everything else that the turn has posted
};

} // namespace nocta
