#include "backends/linux/files/IniDocument.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <utility>

namespace nocta {

namespace {

constexpr std::string_view blanks = " \t\r";
constexpr std::string_view generalSection = "[General]";
constexpr char dataMark = '@';

struct Escape {
    char plain;
    char escaped;
};
constexpr std::array escapes = {Escape{'\\', '\\'}, Escape{'"', '"'}, Escape{'\n', 'n'},
                                Escape{'\r', 'r'}, Escape{'\t', 't'}};

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool isControl(char character) {
    const auto code = static_cast<unsigned char>(character);
    return (code < 0x20 && character != '\t') || code == 0x7f;
}

template <class Number, class... Base>
std::optional<Number> parseNumber(std::string_view text, Base... base) {
    Number number{};
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number, base...);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

/// The text between the quotes, or nothing if `text` is not quoted in the format of this class.
std::optional<std::string> parseQuoted(std::string_view text) {
    if (text.size() < 2 || text.front() != '"' || text.back() != '"') {
        return std::nullopt;
    }
    std::string plain;
    const auto inner = text.substr(1, text.size() - 2);
    for (std::size_t i = 0; i < inner.size(); ++i) {
        if (inner[i] != '\\') {
            plain += inner[i];
            continue;
        }
        ++i;
        if (const auto code = i < inner.size() && inner[i] == 'x'
                                  ? parseNumber<unsigned char>(inner.substr(i + 1, 2), 16)
                                  : std::nullopt) {
            plain += static_cast<char>(*code);
            i += 2;
            continue;
        }
        const auto* const escape = i < inner.size()
                                       ? std::ranges::find(escapes, inner[i], &Escape::escaped)
                                       : escapes.end();
        if (escape == escapes.end()) {
            return std::nullopt;
        }
        plain += escape->plain;
    }
    return plain;
}

std::string quoted(const std::string& plain) {
    std::string text = "\"";
    for (const auto character : plain) {
        const auto* const escape = std::ranges::find(escapes, character, &Escape::plain);
        if (escape == escapes.end() && isControl(character)) {
            constexpr std::string_view digits = "0123456789abcdef";
            const auto code = static_cast<unsigned char>(character);
            text += "\\x";
            text += digits[code >> 4];
            text += digits[code & 15];
        } else if (escape == escapes.end()) {
            text += character;
        } else {
            text += '\\';
            text += escape->escaped;
        }
    }
    return text + '"';
}

DefaultsValue parseValue(std::string_view text) {
    if (text == "true" || text == "false") {
        return text == "true";
    }
    if (const auto integer = parseNumber<std::int64_t>(text)) {
        return *integer;
    }
    // NaN and infinity are read as text, because no setting uses them.
    if (const auto number = parseNumber<double>(text); number && std::isfinite(*number)) {
        return *number;
    }
    if (text.starts_with(dataMark)) {
        if (const auto bytes = parseQuoted(text.substr(1))) {
            return DefaultsData{{bytes->begin(), bytes->end()}};
        }
    }
    return parseQuoted(text).value_or(std::string(text));
}

std::string valueText(const DefaultsValue& value) {
    if (const auto* const text = std::get_if<std::string>(&value)) {
        const auto readsBack =
            parseValue(trimmed(*text)) == value && std::ranges::none_of(*text, isControl);
        return readsBack ? *text : quoted(*text);
    }
    if (const auto* const data = std::get_if<DefaultsData>(&value)) {
        return dataMark + quoted({data->bytes.begin(), data->bytes.end()});
    }
    if (const auto* const flag = std::get_if<bool>(&value)) {
        return *flag ? "true" : "false";
    }
    std::array<char, 32> digits{};
    const auto* const integer = std::get_if<std::int64_t>(&value);
    const auto end = integer != nullptr
                         ? std::to_chars(digits.begin(), digits.end(), *integer).ptr
                         : std::to_chars(digits.begin(), digits.end(), std::get<double>(value)).ptr;
    return {digits.begin(), end};
}

} // namespace

IniDocument IniDocument::parse(std::string_view text) {
    IniDocument document;
    bool inGeneral = true;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        const auto content = trimmed(text.substr(0, end));
        Line line{std::string(text.substr(0, end)), inGeneral, {}};
        text.remove_prefix(std::min(end + 1, text.size()));

        if (content.starts_with('[') && content.ends_with(']')) {
            line.isGeneral = inGeneral = content == generalSection;
        } else if (!content.empty() && content.front() != ';' && content.front() != '#') {
            const auto key = trimmed(content.substr(0, content.find('=')));
            if (content.find('=') != std::string_view::npos) {
                line.key = key;
            }
            if (line.key.empty() || std::ranges::any_of(content, isControl)) {
                document.isWellFormed_ = false;
                continue;
            }
        }
        document.lines_.push_back(std::move(line));
    }
    return document;
}

DefaultsMap IniDocument::values() const {
    DefaultsMap values;
    for (const auto& line : lines_) {
        if (line.isGeneral && !line.key.empty()) {
            const auto text = std::string_view(line.text);
            values.insert_or_assign(line.key, parseValue(trimmed(text.substr(text.find('=') + 1))));
        }
    }
    return values;
}

void IniDocument::set(std::string_view key, const DefaultsValue& value) {
    Line line{std::string(key) + "=" + valueText(value), true, std::string(key)};
    const auto isOurs = [&](const Line& other) { return other.isGeneral && other.key == key; };
    if (const auto existing = std::ranges::find_if(lines_, isOurs); existing != lines_.end()) {
        *existing = std::move(line);
        lines_.erase(std::remove_if(existing + 1, lines_.end(), isOurs), lines_.end());
        return;
    }
    auto position = lines_.end();
    while (position != lines_.begin() && !std::prev(position)->isGeneral) {
        --position;
    }
    if (position == lines_.begin()) {
        position = std::next(lines_.insert(position, {std::string(generalSection), true, {}}));
    }
    lines_.insert(position, std::move(line));
}

void IniDocument::remove(std::string_view key) {
    std::erase_if(lines_, [&](const Line& line) { return line.isGeneral && line.key == key; });
}

std::string IniDocument::text() const {
    std::string text;
    for (const auto& line : lines_) {
        text += line.text;
        text += '\n';
    }
    return text;
}

} // namespace nocta
