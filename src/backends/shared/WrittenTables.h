#pragma once

#include "platform/Displays.h"

#include <algorithm>
#include <map>
#include <span>
#include <vector>

namespace nocta {

/// Keeps the tables that were last written to each display, for a gamma output whose operating
/// system loses them, for example while the machine sleeps. An output has an object of this class
/// as a member, and calls it after every write, whenever the displays change, and when the screen
/// is restored. The object determines which tables the output must resend.
///
///     written_.keep(display, red, green, blue);          // after a write that succeeded
///     written_.keepOnly(onlineDisplays());               // after the displays have changed
///     written_.forEach([&](DisplayId display, ...) {});  // after the system has woken
///     written_.clear();                                  // when the screen is given back
class WrittenTables {
public:
    /// Replaces the display's earlier tables.
    void keep(DisplayId display, std::span<const float> red, std::span<const float> green,
              std::span<const float> blue) {
        tables_.insert_or_assign(display, Tables{{red.begin(), red.end()},
                                                 {green.begin(), green.end()},
                                                 {blue.begin(), blue.end()}});
    }

    /// Removes the tables of all other displays. A display that was unplugged or switched off gets
    /// new tables on the first write after it is connected again.
    void keepOnly(std::span<const DisplayId> displays) {
        std::erase_if(tables_, [displays](const auto& entry) {
            return std::ranges::find(displays, entry.first) == displays.end();
        });
    }

    /// Removes all tables, so that the output does not resend them after it has restored the
    /// screen.
    void clear() { tables_.clear(); }

    /// Calls `send(display, red, green, blue)` for every display that has tables. `send` must not
    /// change the tables.
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
