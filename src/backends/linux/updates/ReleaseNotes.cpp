#include "backends/linux/updates/ReleaseNotes.h"

#include <QList>
#include <QStringTokenizer>
#include <QStringView>

#include <algorithm>
#include <array>
#include <optional>

namespace nocta {

namespace {

constexpr qsizetype maxMarkupLength = 1 << 18; // characters; the rest is ignored
constexpr qsizetype maxNotesLength = 1 << 14;
constexpr qsizetype maxReferenceLength = 10;

constexpr std::array lineElements = {QStringView(u"br"), QStringView(u"p"),  QStringView(u"div"),
                                     QStringView(u"ul"), QStringView(u"ol"), QStringView(u"tr"),
                                     QStringView(u"h1"), QStringView(u"h2"), QStringView(u"h3"),
                                     QStringView(u"h4")};
constexpr std::array silentElements = {QStringView(u"script"), QStringView(u"style"),
                                       QStringView(u"title")};

struct NamedCharacter {
    QStringView name;
    char32_t character;
};
constexpr std::array namedCharacters = {
    NamedCharacter{u"amp", U'&'},        NamedCharacter{u"lt", U'<'},
    NamedCharacter{u"gt", U'>'},         NamedCharacter{u"quot", U'"'},
    NamedCharacter{u"apos", U'\''},      NamedCharacter{u"nbsp", U' '},
    NamedCharacter{u"ndash", U'\u2013'}, NamedCharacter{u"mdash", U'\u2014'},
    NamedCharacter{u"hellip", U'\u2026'}};

template <class List>
bool contains(const List& list, QStringView name) {
    return std::ranges::any_of(
        list, [name](QStringView known) { return name.compare(known, Qt::CaseInsensitive) == 0; });
}

/// Decodes the text between & and ;.
std::optional<char32_t> referenced(QStringView reference) {
    if (reference.startsWith(u'#')) {
        const auto isHex = reference.startsWith(u"#x", Qt::CaseInsensitive);
        bool isNumber = false;
        const auto code = reference.sliced(isHex ? 2 : 1).toUInt(&isNumber, isHex ? 16 : 10);
        const auto isCharacter =
            isNumber && code != 0 && code <= QChar::LastValidCodePoint && !QChar::isSurrogate(code);
        return isCharacter ? std::optional<char32_t>(code) : std::nullopt;
    }
    const auto* const found = std::ranges::find(namedCharacters, reference, &NamedCharacter::name);
    return found == namedCharacters.end() ? std::nullopt : std::optional(found->character);
}

/// Reads the markup in one pass; malformed markup counts as text.
class HtmlText {
public:
    explicit HtmlText(QStringView html) : rest_(html) {}

    QString read() {
        while (!rest_.isEmpty()) {
            if (rest_.front() == u'<') {
                readTag();
            } else if (rest_.front() == u'&') {
                readReference();
            } else {
                add(rest_.front());
                rest_ = rest_.sliced(1);
            }
        }
        return text_;
    }

private:
    void add(QChar character) {
        if (silent_.isEmpty()) {
            text_ += character.isSpace() ? QChar(u' ') : character; // only elements start new lines
        }
    }

    void readTag() {
        if (rest_.startsWith(u"<!--")) {
            const auto end = rest_.indexOf(u"-->");
            rest_ = end < 0 ? QStringView() : rest_.sliced(end + 3);
            return;
        }
        const auto end = rest_.indexOf(u'>');
        if (end < 0) {
            rest_ = {};
            return;
        }
        auto name = rest_.sliced(1, end - 1);
        rest_ = rest_.sliced(end + 1);
        const auto isEnd = name.startsWith(u'/');
        name = name.sliced(isEnd ? 1 : 0);
        const auto* const nameEnd = std::ranges::find_if_not(
            name, [](QChar character) { return character.isLetterOrNumber(); });
        name = name.first(nameEnd - name.begin());
        if (!silent_.isEmpty()) {
            if (isEnd && name.compare(silent_, Qt::CaseInsensitive) == 0) {
                silent_ = {};
            }
        } else if (!isEnd && contains(silentElements, name)) {
            silent_ = name;
        } else if (name.compare(u"li", Qt::CaseInsensitive) == 0) {
            text_ += isEnd ? u"" : u"\n• ";
        } else if (contains(lineElements, name)) {
            text_ += u'\n';
        }
    }

    void readReference() {
        const auto end = rest_.first(std::min(rest_.size(), maxReferenceLength)).indexOf(u';');
        const auto character = end < 0 ? std::nullopt : referenced(rest_.sliced(1, end - 1));
        if (!character) {
            add(u'&');
            rest_ = rest_.sliced(1);
            return;
        }
        if (silent_.isEmpty()) {
            text_ += QString::fromUcs4(&*character, 1);
        }
        rest_ = rest_.sliced(end + 1);
    }

    QStringView rest_;
    QStringView silent_; ///< the element whose text is skipped
    QString text_;
};

/// Control and format characters, including those that change the text direction.
bool isHidden(char32_t character) {
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Other_PrivateUse:
    case QChar::Other_NotAssigned:
        return true;
    default:
        return false;
    }
}

/// Trims the lines and leaves at most one empty line between paragraphs.
QString tidy(const QString& text) {
    QString lines;
    int newLines = 0;
    for (const auto line : QStringTokenizer(text, u'\n')) {
        QString visible;
        for (const char32_t character : line.toUcs4()) {
            if (QChar::isSpace(character)) {
                visible += u' ';
            } else if (!isHidden(character)) {
                visible += QString::fromUcs4(&character, 1);
            }
        }
        visible = visible.simplified();
        newLines = std::min(newLines + 1, 2);
        if (!visible.isEmpty()) {
            lines += lines.isEmpty() ? QString() : QString(newLines, u'\n');
            lines += visible;
            newLines = 0;
        }
        if (lines.size() > maxNotesLength) {
            const auto isSplit = lines.at(maxNotesLength - 1).isHighSurrogate();
            return lines.first(maxNotesLength - (isSplit ? 1 : 0)) + u'…';
        }
    }
    return lines;
}

} // namespace

std::string releaseNotes(const QString& text, NotesFormat format) {
    const auto looked = text.first(std::min(text.size(), maxMarkupLength));
    return tidy(format == NotesFormat::html ? HtmlText(looked).read() : looked).toStdString();
}

} // namespace nocta
