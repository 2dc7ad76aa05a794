#pragma once

#include "base/RunLoop.h"

#include <chrono>
#include <optional>

namespace nocta {

/// When somebody types: keys pressed one after another without a pause. Which keys they are is not
/// its business.
class Typing {
public:
    static constexpr Duration pause = std::chrono::milliseconds(500);

    /// A key is pressed, not before the one that was noted last.
    void press(MonotonicTime time) {
        if (!last_ || time - *last_ >= pause) {
            first_ = time;
        }
        last_ = time;
    }

    /// Whether the key that was noted last goes on with what was being typed before `moment`.
    bool isFromBefore(MonotonicTime moment) const { return last_ && first_ < moment; }

    std::optional<MonotonicTime> last() const { return last_; }

private:
    MonotonicTime first_; ///< since the last pause
    std::optional<MonotonicTime> last_;
};

} // namespace nocta
