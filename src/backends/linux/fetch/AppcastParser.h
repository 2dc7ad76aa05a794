#pragma once

#include "backends/linux/fetch/FetchProtocol.h"
#include "platform/UpdateSource.h"

#include <cstddef>
#include <expat.h>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace nocta {

/// Reads RSS 2.0 with the `sparkle` namespace, in pieces. Entries without a version or an
/// enclosure, or with an invalid value, are left out. A document type declaration ends the parsing
/// before its content is read, because feeds need no entities.
///
///     AppcastParser parser([](const AppcastItem& item) { … });
///     error = parser.add(piece); // for each piece, until there is an error
///     error = parser.finish();
class AppcastParser {
public:
    explicit AppcastParser(std::function<void(const AppcastItem&)> didFindItem);
    AppcastParser(const AppcastParser&) = delete;
    AppcastParser& operator=(const AppcastParser&) = delete;

    std::optional<FetchError> add(std::string_view piece);
    std::optional<FetchError> finish();

private:
    std::optional<FetchError> parse(std::string_view piece, bool isLast);
    void stop(FetchError error);
    void start(std::string_view name, const char** attributes);
    void startField(std::string_view name, const char** attributes);
    void startEnclosure(const char** attributes);
    /// Reads a value of the item. An invalid value makes the item invalid.
    void read(std::string& value, std::string_view text, bool (*isValid)(std::string_view));
    void end();
    void endField();
    void endItem();

    std::function<void(const AppcastItem&)> didFindItem_;
    std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
    std::optional<FetchError> error_;
    std::size_t size_ = 0;
    int depth_ = 0;
    int itemDepth_ = 0; ///< 0 outside of items
    AppcastItem item_;
    bool isItemValid_ = true;
    std::string field_; ///< the name of the item's child that is being read
    std::string text_;  ///< of that child
};

} // namespace nocta
