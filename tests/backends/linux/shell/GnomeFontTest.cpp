#include "backends/linux/shell/GnomeFont.h"

#include "support/EventLoop.h"
#include "support/PrivateBus.h"
#include "support/SettingsPortal.h"

#include <QApplication>
#include <QFont>
#include <gtest/gtest.h>

namespace nocta {
namespace {

class GnomeFontTest : public ::testing::Test {
protected:
    PrivateBus bus{"DBUS_SESSION_BUS_ADDRESS"};
    SettingsPortal portal{bus};
    QFont before = QApplication::font();

    GnomeFontTest() { choose("Cantarell 11"); }
    ~GnomeFontTest() override { QApplication::setFont(before); }

    void choose(const QVariant& font, const QVariant& scale = 1.0) {
        portal.settings["org.gnome.desktop.interface"] = {{"font-name", font},
                                                          {"text-scaling-factor", scale}};
    }
    static bool waitForFont(const QString& family, double size) {
        return serveUntil([&] {
            const auto font = QApplication::font();
            return font.family() == family && font.pointSizeF() == size;
        });
    }
};

TEST_F(GnomeFontTest, FontAndItsChangesAreFollowed) {
    const GnomeFont font;
    EXPECT_TRUE(waitForFont("Cantarell", 11));
    choose("Noto Sans Semi-Bold Italic 10.5", 2.0);
    portal.emitSettingChanged();
    EXPECT_TRUE(waitForFont("Noto Sans", 21));
    EXPECT_EQ(QApplication::font().weight(), QFont::Normal);
    choose("Bold, 12");
    portal.emitSettingChanged();
    EXPECT_TRUE(waitForFont("Bold", 12)) << "a family whose name is also a style";
}

TEST_F(GnomeFontTest, InvalidFontsAreIgnored) {
    const GnomeFont font;
    ASSERT_TRUE(waitForFont("Cantarell", 11));
    for (const auto& invalid :
         {QVariant(""), QVariant("11"), QVariant("Cantarell"), QVariant("Cantarell 1000"),
          QVariant("Cantarell -3"), QVariant("Cantarell nan"), QVariant(11)}) {
        choose(invalid);
        portal.emitSettingChangedAndWait();
        EXPECT_EQ(QApplication::font().family(), "Cantarell") << invalid.toString().toStdString();
        EXPECT_EQ(QApplication::font().pointSizeF(), 11) << invalid.toString().toStdString();
    }
    choose("Cantarell 12", qQNaN());
    portal.emitSettingChanged();
    EXPECT_TRUE(waitForFont("Cantarell", 12)) << "the scale should be ignored";
    choose("Cantarell 10", 1000);
    portal.emitSettingChanged();
    EXPECT_TRUE(waitForFont("Cantarell", 30)) << "the scale should be limited";
}

} // namespace
} // namespace nocta
