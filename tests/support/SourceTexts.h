#pragma once

#include <QCoreApplication>
#include <QTranslator>

#include <algorithm>
#include <array>

namespace nocta {

/// Shows the texts as they are in the source, as macOS does. Only plural forms are translated.
class SourceTexts final : public QTranslator {
public:
    SourceTexts() { QCoreApplication::installTranslator(this); }
    SourceTexts(const SourceTexts&) = delete;
    SourceTexts& operator=(const SourceTexts&) = delete;
    ~SourceTexts() override { QCoreApplication::removeTranslator(this); }

    QString translate(const char* context, const char* source, const char* /*disambiguation*/,
                      int n) const override {
        const auto isPlural = n >= 0;
        return isPlural || qstrcmp(context, "Nocta") != 0 ? QString() : QString::fromUtf8(source);
    }
    bool isEmpty() const override { return false; }
};

/// Returns whether a text names something that only macOS has.
inline bool namesMacOS(const QString& text) {
    constexpr std::array names = {"macOS", "menu bar", "System Preferences"};
    return std::ranges::any_of(names, [&](const char* name) {
        return text.contains(QLatin1String(name), Qt::CaseInsensitive);
    });
}

} // namespace nocta
