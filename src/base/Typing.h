#pragma once

#include "base/RunLoop.h"

#include <chrono>
#include <optional>

namespace nocta {

/// Detects typing: a series of key presses without a pause. It does not know which keys they are.
class Typing {
public:
    static constexpr Duration pause = std::chrono::milliseconds(500);

    /// Records a key press. `time` must not be before that of the last one.
    void press(MonotonicTime time) {
        if (!last_ || time - *last_ >= pause) {
            first_ = time;
        }
        last_ = time;
    }

    /// Whether the last key press belongs to typing that began before `moment`.
    bool isFromBefore(MonotonicTime moment) const { return last_ && first_ < moment; }

    std::optional<MonotonicTime> last() const { return last_; }

private:
    MonotonicTime first_; ///< since the last pause
    std::optional<MonotonicTime> last_;
};

} // namespace nocta
