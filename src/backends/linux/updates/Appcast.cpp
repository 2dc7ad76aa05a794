#include "backends/linux/updates/Appcast.h"

#include "backends/linux/updates/ReleaseNotes.h"
#include "base/Translatable.h"

#include <QXmlStreamReader>

#include <utility>

namespace nocta {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr auto sparkle = "http://www.andymatuschak.org/xml-namespaces/sparkle"_L1;

constexpr qsizetype maxValueLength = 2048; // bytes; addresses are the longest values
constexpr qsizetype maxVersionLength = 64;

/// The trimmed text; empty if it is longer than any valid value.
std::string value(QStringView text, qsizetype maxLength = maxValueLength) {
    const auto bytes = text.trimmed().toUtf8();
    return bytes.size() <= maxLength ? bytes.toStdString() : std::string();
}

/// Empty unless all characters are printable, because the version is shown to the user.
std::string version(QStringView text) {
    for (const auto character : text.trimmed()) {
        if (character < u'!' || character > u'~') {
            return {};
        }
    }
    return value(text, maxVersionLength);
}

class AppcastReader {
public:
    explicit AppcastReader(std::string_view xml)
        : xml_(QByteArray::fromRawData(xml.data(), static_cast<qsizetype>(xml.size()))) {}

    Appcast read() {
        while (!xml_.atEnd()) {
            switch (xml_.readNext()) {
            case QXmlStreamReader::DTD:
                return refused("it contains a document type declaration");
            case QXmlStreamReader::StartElement:
                if (!std::exchange(hasRoot_, true)) {
                    if (!is({}, "rss"_L1)) {
                        return refused("it is not RSS");
                    }
                } else if (is({}, "item"_L1)) {
                    readItem();
                }
                break;
            default:
                break;
            }
        }
        if (xml_.hasError()) {
            return refused("line " + std::to_string(xml_.lineNumber()) + " is malformed");
        }
        return {.items = std::move(items_)};
    }

private:
    static Appcast refused(const std::string& reason) {
        return {.error = translatable("Nocta", "The feed cannot be read") + (": " + reason)};
    }

    bool is(QLatin1String space, QLatin1String name) const {
        return xml_.namespaceUri() == space && xml_.name() == name;
    }
    QString text() { return xml_.readElementText(QXmlStreamReader::SkipChildElements); }

    void readItem() {
        AppcastItem item;
        while (xml_.readNextStartElement()) {
            readElement(item);
        }
        if (item.shortVersionString.empty()) {
            item.shortVersionString = item.version;
        }
        if (!item.version.empty() && !item.url.empty()) {
            items_.push_back(std::move(item));
        }
    }

    void readElement(AppcastItem& item) {
        if (is({}, "enclosure"_L1)) {
            readEnclosure(item);
        } else if (is({}, "description"_L1)) {
            const auto isPlain = xml_.attributes().value(sparkle, "format"_L1) == "plain-text"_L1;
            item.releaseNotes =
                releaseNotes(text(), isPlain ? NotesFormat::plainText : NotesFormat::html);
        } else if (is(sparkle, "version"_L1)) {
            item.version = version(text());
        } else if (is(sparkle, "shortVersionString"_L1)) {
            item.shortVersionString = version(text());
        } else if (is(sparkle, "minimumSystemVersion"_L1)) {
            item.minimumSystemVersion = value(text());
        } else if (is(sparkle, "channel"_L1)) {
            item.channel = value(text());
        } else {
            xml_.skipCurrentElement();
        }
    }

    /// The enclosure may contain the versions as well.
    void readEnclosure(AppcastItem& item) {
        const auto attributes = xml_.attributes();
        item.url = value(attributes.value("url"_L1));
        item.length = attributes.value("length"_L1).toLongLong();
        item.os = value(attributes.value(sparkle, "os"_L1));
        item.edSignature = value(attributes.value(sparkle, "edSignature"_L1));
        if (attributes.hasAttribute(sparkle, "version"_L1)) {
            item.version = version(attributes.value(sparkle, "version"_L1));
        }
        if (attributes.hasAttribute(sparkle, "shortVersionString"_L1)) {
            item.shortVersionString = version(attributes.value(sparkle, "shortVersionString"_L1));
        }
        xml_.skipCurrentElement();
    }

    QXmlStreamReader xml_;
    bool hasRoot_ = false;
    std::vector<AppcastItem> items_;
};

} // namespace

Appcast parseAppcast(std::string_view xml) {
    return AppcastReader(xml).read();
}

} // namespace nocta
