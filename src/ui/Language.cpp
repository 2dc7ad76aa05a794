#include "ui/Language.h"

#include <QCoreApplication>
#include <QLibraryInfo>

namespace nocta {

namespace {

void install(QTranslator& translator, const QLocale& locale, const QString& name,
             const QString& folder) {
    if (translator.load(locale, name, QStringLiteral("_"), folder)) {
        QCoreApplication::installTranslator(&translator);
    }
}

} // namespace

Language::Language(const QLocale& locale) {
    install(toolkit_, locale, QStringLiteral("qtbase"),
            QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    const auto name = QStringLiteral("nocta");
    const auto folder = QStringLiteral(":/translations");
    install(english_, QLocale(QLocale::English), name, folder);
    install(own_, locale, name, folder); // last: Qt searches the newest translator first
}

Language::~Language() {
    QCoreApplication::removeTranslator(&own_);
    QCoreApplication::removeTranslator(&english_);
    QCoreApplication::removeTranslator(&toolkit_);
}

} // namespace nocta
