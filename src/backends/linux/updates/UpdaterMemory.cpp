#include "backends/linux/updates/UpdaterMemory.h"

#include "backends/linux/files/FileContent.h"
#include "backends/linux/files/PrivateFolder.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <system_error>
#include <utility>

namespace nocta {

namespace {

constexpr std::size_t maxRecordSize = 1 << 16; // bytes

constexpr auto checksAutomatically = "checksAutomatically";
constexpr auto downloadsAutomatically = "downloadsAutomatically";
constexpr auto lastCheck = "lastCheck"; // seconds since 1970
constexpr auto skippedVersion = "skippedVersion";

template <class Value>
std::optional<Value> valueOf(const nlohmann::json& record, const char* key) {
    const auto found = record.find(key);
    if (found == record.end()) {
        return std::nullopt;
    }
    const auto* const value = found->get_ptr<const Value*>();
    return value == nullptr ? std::nullopt : std::optional(*value);
}

/// Returns nothing if the time is outside the range of the clock.
std::optional<WallTime> timeOf(std::int64_t seconds) {
    constexpr auto latest = std::chrono::floor<std::chrono::seconds>(WallTime::max());
    if (seconds < 0 || seconds > latest.time_since_epoch().count()) {
        return std::nullopt;
    }
    return WallTime(std::chrono::seconds(seconds));
}

} // namespace

UpdaterRecord parseUpdaterRecord(std::string_view json) {
    UpdaterRecord record;
    const auto parsed = nlohmann::json::parse(json, nullptr, false);
    if (!parsed.is_object()) {
        return record;
    }
    record.checksAutomatically = valueOf<bool>(parsed, checksAutomatically);
    record.downloadsAutomatically = valueOf<bool>(parsed, downloadsAutomatically).value_or(false);
    if (const auto seconds = valueOf<std::int64_t>(parsed, lastCheck)) {
        record.lastCheck = timeOf(*seconds);
    }
    record.skippedVersion = valueOf<std::string>(parsed, skippedVersion).value_or("");
    return record;
}

std::string serialized(const UpdaterRecord& record) {
    nlohmann::json json = {{downloadsAutomatically, record.downloadsAutomatically}};
    if (record.checksAutomatically) {
        json[checksAutomatically] = *record.checksAutomatically;
    }
    if (record.lastCheck) {
        json[lastCheck] =
            std::chrono::floor<std::chrono::seconds>(*record.lastCheck).time_since_epoch().count();
    }
    if (!record.skippedVersion.empty()) {
        json[skippedVersion] = record.skippedVersion;
    }
    return json.dump() + "\n";
}

UpdaterMemory::UpdaterMemory(std::filesystem::path file) : file_(std::move(file)) {
    std::string content;
    isKept_ = readFile(file_, maxRecordSize, content) == 0;
    record_ = parseUpdaterRecord(content);
}

void UpdaterMemory::keep() {
    std::error_code error;
    createPrivateFolders(file_.parent_path());
    // Replaces the file atomically. Does not wait for the disk, because a wait would delay screen
    // updates.
    const auto next = file_.string() + ".new";
    const auto isWritten =
        static_cast<bool>(std::ofstream(next) << serialized(record_) << std::flush);
    if (isWritten) {
        std::filesystem::rename(next, file_, error);
    }
    if (!isWritten || error) {
        std::cerr << "nocta: cannot write " << file_.string() << std::endl;
    }
}

} // namespace nocta
