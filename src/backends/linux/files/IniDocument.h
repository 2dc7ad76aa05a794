#pragma once

#include "base/DefaultsTable.h"

#include <string>
#include <string_view>
#include <vector>

namespace nocta {

/// The text of an INI file. A damaged line makes only that line unreadable; with GLib's key files
/// or Qt's settings, more would be lost. Our keys are those under [General] or before any section.
/// Everything else, including other sections and comments, stays in place when the text is written
/// back.
///
/// Values are `true`, `false`, numbers in C notation, and text. Text that would be read as
/// something else is written in double quotes with the escapes \\, \", \n, \r, \t and \xHH. Data
/// are written the same way, after an @.
class IniDocument {
public:
    /// Parses any text, and reads as much of it as possible.
    static IniDocument parse(std::string_view text);

    /// Returns false if any line is not blank, a comment, a section or an assignment, or if the
    /// input is not plain text.
    bool isWellFormed() const { return isWellFormed_; }

    /// Our keys and their values. If a key is assigned twice, the last assignment counts.
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
