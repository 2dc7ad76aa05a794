#pragma once

#include "platform/Displays.h"

#include <algorithm>
#include <map>
#include <span>
#include <vector>

namespace nocta {

/// The tables that each display was given last, for a gamma output whose system forgets them, for
/// example while the machine sleeps. A member of the output, which tells it of every write, of
/// every change of the displays and of the end; it decides which tables are to be sent again.
///
///     written_.keep(display, red, green, blue);          // after a write that succeeded
///     written_.keepOnly(onlineDisplays());               // after the displays have changed
///     written_.forEach([&](DisplayId display, ...) {});  // after the system has woken
///     written_.clear();                                  // when the screen is given back
class WrittenTables {
public:
    /// Replaces what the display was given before.
    void keep(DisplayId display, std::span<const float> red, std::span<const float> green,
              std::span<const float> blue) {
        tables_.insert_or_assign(display, Tables{{red.begin(), red.end()},
                                                 {green.begin(), green.end()},
                                                 {blue.begin(), blue.end()}});
    }

    /// Forgets the tables of every other display: one that was unplugged or switched off waits for
    /// the next setter when it comes back.
    void keepOnly(std::span<const DisplayId> displays) {
        std::erase_if(tables_, [displays](const auto& entry) {
            return std::ranges::find(displays, entry.first) == displays.end();
        });
    }

    /// Nothing is to be sent again after the screen was given back.
    void clear() { tables_.clear(); }

    /// Calls `send(display, red, green, blue)` for every display that was given tables. It may
    /// not change these.
    template <class Send>
    void forEach(Send send) const {
        for (const auto& [display, tables] : tables_) {
            send(display, tables.red, tables.green, tables.blue);
        }
    }

private:
    struct Tables {
        std::vector<float> red;
        std::vector<float> green;
        std::vector<float> blue;
    };

    std::map<DisplayId, Tables> tables_;
};

} // namespace nocta
