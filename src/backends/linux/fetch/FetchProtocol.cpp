#include "backends/linux/fetch/FetchProtocol.h"

#include "backends/linux/fetch/ReleaseNotes.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>

namespace nocta {

namespace {

using Json = nlohmann::json;

constexpr int maxStatus = 999;

bool isPrintable(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
}

/// Reads the members of one object. After an invalid or missing member, `isValid` is false.
class Reader {
public:
    explicit Reader(const Json& object) : object_(object), isValid_(object.is_object()) {}

    std::string text(const char* key, std::size_t maxSize) {
        const auto* const value = find<std::string>(key);
        isValid_ = isValid_ && value != nullptr && value->size() <= maxSize;
        return isValid_ ? *value : std::string();
    }
    std::string printable(const char* key) {
        auto value = text(key, maxFeedValueSize);
        isValid_ = isValid_ && isPrintable(value);
        return value;
    }
    std::string notes(const char* key) {
        auto value = text(key, maxReleaseNotesSize);
        isValid_ = isValid_ && value == releaseNotes(value);
        return value;
    }
    std::string version(const char* key) {
        auto value = text(key, maxVersionSize);
        isValid_ = isValid_ && isVersion(value);
        return value;
    }
    template <class Integer>
    Integer number(const char* key, Integer max) {
        const auto* const value = find<std::uint64_t>(key);
        isValid_ = isValid_ && value != nullptr && *value <= static_cast<std::uint64_t>(max);
        return isValid_ ? static_cast<Integer>(*value) : Integer{};
    }
    /// Whether every member was read and valid.
    bool isComplete() const { return isValid_ && object_.size() == read_; }

private:
    template <class Value>
    const Value* find(const char* key) {
        if (!isValid_) {
            return nullptr;
        }
        ++read_;
        const auto found = object_.find(key);
        return found == object_.end() ? nullptr : found->get_ptr<const Value*>();
    }

    const Json& object_;
    bool isValid_;
    std::size_t read_ = 0;
};

Json toJson(const AppcastItem& item) {
    return {{"item",
             {{"version", item.version},
              {"shortVersionString", item.shortVersionString},
              {"minimumSystemVersion", item.minimumSystemVersion},
              {"channel", item.channel},
              {"os", item.os},
              {"url", item.url},
              {"edSignature", item.edSignature},
              {"length", static_cast<std::uint64_t>(item.length)},
              {"releaseNotes", item.releaseNotes}}}};
}
Json toJson(const Package& package) {
    return {{"package",
             {{"name", package.name},
              {"version", package.version},
              {"architecture", package.architecture}}}};
}
Json toJson(const FetchProgress& progress) {
    return {{"received", static_cast<std::uint64_t>(progress.received)}};
}
Json toJson(const FetchStatus& status) {
    return {{"status", static_cast<unsigned>(status.code)}};
}
Json toJson(const FetchEnd& /*end*/) {
    return {{"end", 0U}};
}
Json toJson(const FetchFailure& failure) {
    return {{"error", static_cast<unsigned>(failure.error)},
            {"detail", static_cast<unsigned>(failure.detail)}};
}

AppcastItem readItem(Reader& reader) {
    return {.version = reader.version("version"),
            .shortVersionString = reader.version("shortVersionString"),
            .minimumSystemVersion = reader.printable("minimumSystemVersion"),
            .channel = reader.printable("channel"),
            .os = reader.printable("os"),
            .url = reader.printable("url"),
            .edSignature = reader.printable("edSignature"),
            .length = reader.number("length", std::numeric_limits<std::int64_t>::max()),
            .releaseNotes = reader.notes("releaseNotes")};
}
Package readPackage(Reader& reader) {
    return {.path = {},
            .name = reader.printable("name"),
            .version = reader.printable("version"),
            .architecture = reader.printable("architecture")};
}

/// Reads the object inside a message of one member. `read` returns the answer.
template <class Read>
std::optional<FetchAnswer> contentOf(const Json& message, Read read) {
    Reader reader(message.front());
    const FetchAnswer answer = read(reader);
    return message.size() == 1 && reader.isComplete() ? std::optional(answer) : std::nullopt;
}

} // namespace

bool isVersion(std::string_view text) {
    constexpr std::string_view characters =
        "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz.+~-";
    return !text.empty() && text.size() <= maxVersionSize &&
           text.find_first_not_of(characters) == std::string_view::npos;
}

std::string serialized(const FetchAnswer& answer) {
    const auto message = std::visit([](const auto& value) { return toJson(value); }, answer);
    return message.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::optional<FetchAnswer> parseFetchAnswer(std::string_view line) {
    const auto message = Json::parse(line, nullptr, false);
    if (message.contains("item")) {
        return contentOf(message, readItem);
    }
    if (message.contains("package")) {
        return contentOf(message, readPackage);
    }
    Reader reader(message);
    FetchAnswer answer;
    if (message.contains("received")) {
        answer = FetchProgress{reader.number("received", std::numeric_limits<std::int64_t>::max())};
    } else if (message.contains("status")) {
        answer = FetchStatus{reader.number("status", maxStatus)};
    } else if (message.contains("end")) {
        reader.number("end", 0);
        answer = FetchEnd{};
    } else {
        constexpr auto maxError = static_cast<unsigned>(FetchError::count) - 1;
        answer = FetchFailure{static_cast<FetchError>(reader.number("error", maxError)),
                              reader.number("detail", std::numeric_limits<int>::max())};
    }
    return reader.isComplete() ? std::optional(answer) : std::nullopt;
}

} // namespace nocta
