#pragma once

#include "base/RunLoop.h"

#include <string>
#include <vector>

namespace nocta {

/// Records every call to the virtual desktop, in order. Each entry consists of one line of text and
/// the simulated time.
class Trace {
public:
    struct Entry {
        WallTime time;
        std::string call;
    };

    explicit Trace(const RunLoop& runLoop) : runLoop_(runLoop) {}

    void record(std::string call) { entries_.push_back({runLoop_.wallNow(), std::move(call)}); }
    void clear() { entries_.clear(); }

    const std::vector<Entry>& entries() const { return entries_; }

    /// Returns the calls that begin with `prefix`, without their times.
    std::vector<std::string> calls(std::string_view prefix = "") const {
        std::vector<std::string> found;
        for (const auto& entry : entries_) {
            if (entry.call.starts_with(prefix)) {
                found.push_back(entry.call);
            }
        }
        return found;
    }

private:
    const RunLoop& runLoop_;
    std::vector<Entry> entries_;
};

} // namespace nocta
