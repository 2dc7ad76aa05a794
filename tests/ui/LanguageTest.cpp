#include "ui/Language.h"

#include "support/Face.h"
#include "support/SourceTexts.h"
#include "ui/Descriptions.h"
#include "ui/Text.h"

#include <QComboBox>
#include <QFile>
#include <QXmlStreamReader>

#include <map>
#include <set>

namespace nocta {
namespace {

/// Records the requested texts without translating them.
class Recorder final : public QTranslator {
public:
    mutable std::set<QString> asked;

    Recorder() { QCoreApplication::installTranslator(this); }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;
    ~Recorder() override { QCoreApplication::removeTranslator(this); }

    QString translate(const char* context, const char* source, const char* /*disambiguation*/,
                      int /*n*/) const override {
        if (qstrcmp(context, "Nocta") == 0) {
            asked.insert(QString::fromUtf8(source));
        }
        return {};
    }
    bool isEmpty() const override { return false; }
};

/// Returns the texts of the source in a translation file, each with its translation.
std::map<QString, QString> translations(const char* name) {
    QFile file(QStringLiteral(NOCTA_SOURCE_DIR "/resources/translations/") + QLatin1String(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader reader(&file);
    std::map<QString, QString> found;
    QString source;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && reader.name() == QStringLiteral("source")) {
            source = reader.readElementText();
        } else if (reader.isStartElement() && reader.name() == QStringLiteral("translation")) {
            found[source] = reader.readElementText(QXmlStreamReader::IncludeChildElements);
        }
    }
    return found;
}

std::set<QString> textsInFile() {
    std::set<QString> texts;
    for (const auto& [source, translation] : translations("nocta_en.ts")) {
        texts.insert(source);
    }
    return texts;
}

class LanguageTest : public Face {};

TEST_F(LanguageTest, EnglishUsesSingulars) {
    settings().breakIntervalMinutes.set(1);
    settings().breakDurationSeconds.set(1);
    const Language english(QLocale(QStringLiteral("en_GB")));
    open(realViews.makePreferencesView());
    EXPECT_EQ(control<QComboBox>("intervalPicker").currentText(), "Every 1 minute");
    EXPECT_EQ(control<QComboBox>("durationPicker").currentText(), "1 second");
    settings().breakIntervalMinutes.set(25);
    EXPECT_EQ(control<QComboBox>("intervalPicker").currentText(), "Every 25 minutes");
}

TEST_F(LanguageTest, LanguageWithoutAFileFallsBackToEnglish) {
    settings().breakIntervalMinutes.set(1);
    const Language icelandic(QLocale(QStringLiteral("is_IS")));
    open(realViews.makePreferencesView());
    EXPECT_EQ(control<QComboBox>("intervalPicker").currentText(), "Every 1 minute");
}

TEST_F(LanguageTest, SourceNamesPartsOfMacOSAndItsTranslationNamesThoseOfLinux) {
    std::set<QString> named;
    for (const auto& [source, translation] : translations("nocta_en.ts")) {
        if (namesMacOS(source)) {
            named.insert(source);
            EXPECT_FALSE(translation.isEmpty()) << source.toStdString();
        }
        EXPECT_FALSE(namesMacOS(translation)) << translation.toStdString();
    }
    EXPECT_EQ(named, (std::set<QString>{
                         "Menu Bar Icon", "Go dimmer than macOS allows",
                         "Nocta extends your brightness range beyond what macOS allows. The "
                         "setting applies to all your displays at once.",
                         "Nocta lives in your menu bar — click the eye icon anytime to adjust "
                         "your settings.",
                         "You can always change these in System Preferences."}));
}

TEST_F(LanguageTest, EveryEnglishLocaleNamesThePartsOfLinux) {
    const SourceTexts sourceTexts; // hides the language that the views have installed
    EXPECT_EQ(Text::tr("Menu Bar Icon"), "Menu Bar Icon");
    for (const auto& locale :
         {QLocale::c(), QLocale(QStringLiteral("en_US")), QLocale(QStringLiteral("is_IS"))}) {
        const Language language(locale);
        EXPECT_EQ(Text::tr("Menu Bar Icon"), "Panel Icon") << locale.name().toStdString();
    }
}

TEST_F(LanguageTest, EnglishOfMacOSHasThePluralFormsAndNothingElse) {
    const auto plurals = translations("plurals_en.ts");
    EXPECT_EQ(plurals.size(), 3U);
    const auto all = translations("nocta_en.ts");
    for (const auto& [source, translation] : plurals) {
        EXPECT_TRUE(source.contains(QStringLiteral("%n"))) << source.toStdString();
        EXPECT_EQ(translation, all.at(source));
    }
}

TEST_F(LanguageTest, TranslationFileContainsEveryTextThatIsShown) {
    const Recorder recorder;
    desktop.displays.takesTables = false;
    desktop.filter.hasEntryPoint = false;
    desktop.bundle.apiBase = {};
    desktop.location.answer(AuthorizationStatus::restricted);
    launch();
    for (const auto& state : std::vector<BreakState>{Counting{59}, Counting{60}, Active{1},
                                                     Paused{PauseReason::meeting},
                                                     Paused{PauseReason::userPaused}, Snoozed{}}) {
        breakStatusLine(state);
    }
    for (const auto kelvin : {1000, 3000, 4000, 5000, 6000}) {
        temperatureDescription(kelvin);
    }
    sunTimesLine(true);
    for (const auto warmth : {0.0, 0.5, 1.0}) {
        warmthWord(warmth);
    }
    open(realViews.makePopoverContentView([] {}));
    open(realViews.makePreferencesView());
    feedback().message.set("hello");
    feedback().send();
    open(realViews.makeOnboardingView([] {}));
    click("continueButton");
    click("continueButton");
    click("continueButton");
    const auto menu = realViews.makeStatusMenu([] {});
    breakTimer().start();
    const auto overlay = realViews.makeBreakOverlayView([] {}, [] {});

    auto expected = recorder.asked;
    for (const auto* const ofAPort : {"Preferences", "Welcome to Nocta", "Skip", "Snooze 5 min"}) {
        expected.insert(QString::fromUtf8(ofAPort));
    }
    EXPECT_GT(expected.size(), 90U) << "the texts of the views should be found";
    const auto found = textsInFile();
    for (const auto& text : expected) {
        EXPECT_TRUE(found.contains(text))
            << text.toStdString()
            << " should be in the file; to update it, build the target translations";
    }
}

TEST_F(LanguageTest, DetailsInATextAreNotTranslated) {
    const Recorder recorder;
    EXPECT_EQ(Text::of("The file cannot be saved: /tmp: No space left on device"),
              "The file cannot be saved: /tmp: No space left on device");
    EXPECT_EQ(recorder.asked, (std::set<QString>{"The file cannot be saved", "%1: %2"}));
    for (const auto& text : recorder.asked) {
        EXPECT_TRUE(textsInFile().contains(text)) << text.toStdString();
    }
}

} // namespace
} // namespace nocta
