#pragma once

#include "base/DefaultsTable.h"

#include <string>
#include <string_view>
#include <vector>

namespace nocta {

/// The text of an INI file, of which the keys under [General] (or before any section) are ours.
/// Everything else, other sections and comments too, stays in place when it is written back.
///
/// Values are `true`, `false`, numbers in C notation, and text; text that would read as something
/// else is written in double quotes with the escapes \\, \", \n, \r, \t and \xHH. Data are written
/// like such a text, after an @.
class IniDocument {
public:
    /// Reads what can be read of any text.
    static IniDocument parse(std::string_view text);

    /// False when some line was neither blank, comment, section nor assignment, or the text was
    /// not plain text at all.
    bool isWellFormed() const { return isWellFormed_; }

    /// Our keys. Where one is assigned twice the last counts.
    DefaultsMap values() const;

    void set(std::string_view key, const DefaultsValue& value);
    void remove(std::string_view key);

    std::string text() const;

private:
    struct Line {
        std::string text;
        bool isGeneral = true;
        std::string key; ///< empty unless the line is an assignment
    };

    std::vector<Line> lines_;
    bool isWellFormed_ = true;
};

} // namespace nocta
