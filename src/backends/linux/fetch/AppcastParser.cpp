#include "backends/linux/fetch/AppcastParser.h"

#include "backends/linux/fetch/ReleaseNotes.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace nocta {

namespace {

constexpr std::size_t maxFeedSize = 1 << 17; // bytes

// Expat joins the namespace and the name of an element with this character.
constexpr char separator = '|';
#define SPARKLE "http://www.andymatuschak.org/xml-namespaces/sparkle|"
constexpr std::string_view sparkleVersion = SPARKLE "version";
constexpr std::string_view sparkleShortVersion = SPARKLE "shortVersionString";
constexpr std::string_view sparkleMinimumSystemVersion = SPARKLE "minimumSystemVersion";
constexpr std::string_view sparkleChannel = SPARKLE "channel";
constexpr std::string_view sparkleOs = SPARKLE "os";
constexpr std::string_view sparkleSignature = SPARKLE "edSignature";
constexpr std::string_view sparkleFormat = SPARKLE "format";
#undef SPARKLE

std::string_view trimmed(std::string_view text) {
    constexpr auto blanks = " \t\r\n";
    const auto begin = std::min(text.find_first_not_of(blanks), text.size());
    const auto end = text.find_last_not_of(blanks) + 1;
    return text.substr(begin, std::max(begin, end) - begin);
}

bool isValue(std::string_view text) {
    return text.size() <= maxFeedValueSize &&
           std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
}

std::int64_t length(std::string_view text) {
    text = trimmed(text);
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && number > 0 ? number : 0;
}

/// Calls `visit(name, value)` for each attribute.
template <class Visit>
void forEachAttribute(const char** attributes, Visit visit) {
    for (; *attributes != nullptr; attributes += 2) {
        visit(std::string_view(attributes[0]), std::string_view(attributes[1]));
    }
}

} // namespace

AppcastParser::AppcastParser(std::function<void(const AppcastItem&)> didFindItem)
    : didFindItem_(std::move(didFindItem)),
      parser_(XML_ParserCreateNS(nullptr, separator), &XML_ParserFree) {
    auto* const parser = parser_.get();
    XML_SetUserData(parser, this);
    XML_SetElementHandler(
        parser,
        [](void* self, const char* name, const char** attributes) {
            static_cast<AppcastParser*>(self)->start(name, attributes);
        },
        [](void* self, const char* /*name*/) { static_cast<AppcastParser*>(self)->end(); });
    XML_SetCharacterDataHandler(parser, [](void* user, const char* text, int size) {
        auto& self = *static_cast<AppcastParser*>(user);
        if (self.itemDepth_ != 0 && self.depth_ == self.itemDepth_ + 1) {
            self.text_.append(text, static_cast<std::size_t>(size));
        }
    });
    XML_SetStartDoctypeDeclHandler(parser, [](void* self, const char* /*name*/,
                                              const char* /*system*/, const char* /*public*/,
                                              int /*hasInternalSubset*/) {
        static_cast<AppcastParser*>(self)->stop(FetchError::feedHasDoctype);
    });
}

std::optional<FetchError> AppcastParser::add(std::string_view piece) {
    if (piece.size() > maxFeedSize - size_) {
        return FetchError::feedTooLong;
    }
    size_ += piece.size();
    return parse(piece, false);
}

std::optional<FetchError> AppcastParser::finish() {
    return parse({}, true);
}

std::optional<FetchError> AppcastParser::parse(std::string_view piece, bool isLast) {
    const auto status =
        XML_Parse(parser_.get(), piece.data(), static_cast<int>(piece.size()), isLast ? 1 : 0);
    if (status != XML_STATUS_OK && !error_) {
        error_ = FetchError::feedMalformed;
    }
    return error_;
}

void AppcastParser::stop(FetchError error) {
    error_ = error;
    XML_StopParser(parser_.get(), XML_FALSE);
}

void AppcastParser::start(std::string_view name, const char** attributes) {
    ++depth_;
    if (depth_ == 1) {
        if (name != "rss") {
            stop(FetchError::feedNotRss);
        }
    } else if (itemDepth_ == 0) {
        if (name == "item") {
            itemDepth_ = depth_;
            item_ = {};
            isItemValid_ = true;
        }
    } else if (depth_ == itemDepth_ + 1) {
        startField(name, attributes);
    }
}

void AppcastParser::startField(std::string_view name, const char** attributes) {
    field_ = name;
    text_.clear();
    if (name == "enclosure") {
        startEnclosure(attributes);
    } else if (name == "description") {
        bool isPlain = false;
        forEachAttribute(attributes, [&](std::string_view attribute, std::string_view text) {
            isPlain = isPlain || (attribute == sparkleFormat && text == "plain-text");
        });
        if (!isPlain) {
            field_.clear(); // markup is not shown
        }
    }
}

/// The enclosure may contain the versions as well.
void AppcastParser::startEnclosure(const char** attributes) {
    forEachAttribute(attributes, [this](std::string_view name, std::string_view text) {
        if (name == "url") {
            read(item_.url, text, isValue);
        } else if (name == "length") {
            item_.length = length(text);
        } else if (name == sparkleOs) {
            read(item_.os, text, isValue);
        } else if (name == sparkleSignature) {
            read(item_.edSignature, text, isValue);
        } else if (name == sparkleVersion) {
            read(item_.version, text, isVersion);
        } else if (name == sparkleShortVersion) {
            read(item_.shortVersionString, text, isVersion);
        }
    });
}

void AppcastParser::read(std::string& value, std::string_view text,
                         bool (*isValid)(std::string_view)) {
    value = trimmed(text);
    isItemValid_ = isItemValid_ && isValid(value);
}

void AppcastParser::end() {
    if (itemDepth_ != 0 && depth_ == itemDepth_ + 1) {
        endField();
    } else if (depth_ == itemDepth_) {
        endItem();
    }
    --depth_;
}

void AppcastParser::endField() {
    if (field_ == "description") {
        item_.releaseNotes = releaseNotes(text_);
    } else if (field_ == sparkleVersion) {
        read(item_.version, text_, isVersion);
    } else if (field_ == sparkleShortVersion) {
        read(item_.shortVersionString, text_, isVersion);
    } else if (field_ == sparkleMinimumSystemVersion) {
        read(item_.minimumSystemVersion, text_, isValue);
    } else if (field_ == sparkleChannel) {
        read(item_.channel, text_, isValue);
    }
}

void AppcastParser::endItem() {
    itemDepth_ = 0;
    if (item_.shortVersionString.empty()) {
        item_.shortVersionString = item_.version;
    }
    if (isItemValid_ && !item_.version.empty() && !item_.url.empty()) {
        didFindItem_(item_);
    }
}

} // namespace nocta
