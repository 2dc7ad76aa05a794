#pragma once

#include "base/RunLoop.h"

#include <chrono>
#include <optional>

namespace nocta {

/// Detects typing: a series of key presses without a pause. It does not record which keys were
/// pressed.
class Typing {
public:
    static constexpr Duration pause = std::chrono::milliseconds(500);

    /// Records a key press. `time` must not be earlier than that of the last key press.
    void press(MonotonicTime time) {
        if (!last_ || time - *last_ >= pause) {
            first_ = time;
        }
        last_ = time;
    }

    /// Returns whether the last key press belongs to typing that began before `moment`.
    bool isFromBefore(MonotonicTime moment) const { return last_ && first_ < moment; }

    std::optional<MonotonicTime> last() const { return last_; }

private:
    MonotonicTime first_; ///< the first key press since the last pause
    std::optional<MonotonicTime> last_;
};

} // namespace nocta
