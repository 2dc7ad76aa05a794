#pragma once

#include "base/RunLoop.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace nocta {

/// The data that the updater keeps between runs.
struct UpdaterRecord {
    std::optional<bool> checksAutomatically{}; ///< empty until the user has decided
    bool downloadsAutomatically = false;
    std::optional<WallTime> lastCheck{}; ///< the last check that got an answer, in whole seconds
    std::string skippedVersion{};

    bool operator==(const UpdaterRecord&) const = default;
};

/// A value that is missing, unreadable or of the wrong type is replaced with its default.
UpdaterRecord parseUpdaterRecord(std::string_view json);
std::string serialized(const UpdaterRecord& record);

/// Keeps the record in its own file. If the file cannot be written, the record stays in memory.
class UpdaterMemory {
public:
    explicit UpdaterMemory(std::filesystem::path file);

    /// Whether a record existed before this run.
    bool isKept() const { return isKept_; }
    const UpdaterRecord& record() const { return record_; }

    template <class Change>
    void update(Change change) {
        change(record_);
        keep();
    }
    /// Saves the record, so that one exists from now on.
    void keep();

private:
    std::filesystem::path file_;
    bool isKept_ = false;
    UpdaterRecord record_;
};

} // namespace nocta
