#include "tour/DisplayPipeline.h"

#include "support/TestDesktop.h"

#include <cmath>

namespace nocta {
namespace {

class DisplayPipelineTest : public TestDesktop {
protected:
    bool isGray = false;

    /// Returns the color that is visible when `sent` is sent to the display.
    QColor seen(DisplayId id, const QColor& sent) {
        QImage picture(3, 2, QImage::Format_RGB32);
        picture.fill(sent);
        DisplayPipeline(desktop.displays.display(id), isGray).apply(picture);
        EXPECT_EQ(picture.pixel(0, 0), picture.pixel(2, 1))
            << "the whole picture should have one color";
        return QColor(picture.pixel(2, 1));
    }
    void startAt(double brightness) {
        settings().autoWarmthEnabled.set(false);
        settings().warmthLevel.set(0);
        settings().unifiedBrightness.set(brightness);
        launch();
    }
};

TEST_F(DisplayPipelineTest, FactoryTablesAndFullBacklightChangeNothing) {
    plugBuiltIn();
    desktop.displays.display(builtIn).backlight = 1;
    for (int level = 0; level < 256; ++level) {
        const QColor color(level, 255 - level, level / 2);
        EXPECT_EQ(seen(builtIn, color), color);
    }
}

TEST_F(DisplayPipelineTest, TablesOfTheProgramAreVisible) {
    plugExternal();
    startAt(0.5);
    const auto& display = desktop.displays.display(external);
    for (const auto level : {0, 1, 100, 255}) {
        const auto color = seen(external, QColor(level, level, level));
        const auto place = static_cast<std::size_t>(level);
        EXPECT_EQ(color.red(), std::lround(255 * display.red[place]));
        EXPECT_EQ(color.green(), std::lround(255 * display.green[place]));
        EXPECT_EQ(color.blue(), std::lround(255 * display.blue[place]));
    }
    EXPECT_EQ(seen(external, Qt::white).red(), 128) << "the level should be halved";
}

TEST_F(DisplayPipelineTest, BacklightScalesLightLinearly) {
    plugBuiltIn();
    desktop.displays.display(builtIn).backlight = 0.5F;
    EXPECT_EQ(seen(builtIn, Qt::white), QColor(188, 188, 188)) << "the light should be halved";
    EXPECT_EQ(seen(builtIn, Qt::black), QColor(Qt::black));
    plugExternal();
    desktop.displays.display(external).backlight = 0.5F;
    EXPECT_EQ(seen(external, Qt::white), QColor(Qt::white))
        << "a display without a backlight should not change";
}

TEST_F(DisplayPipelineTest, FilterRemovesTheColorBeforeTheTables) {
    plugExternal();
    isGray = true;
    EXPECT_EQ(seen(external, Qt::white), QColor(Qt::white));
    EXPECT_EQ(seen(external, Qt::red), QColor(54, 54, 54));
    EXPECT_EQ(seen(external, Qt::green), QColor(182, 182, 182));
    EXPECT_EQ(seen(external, Qt::blue), QColor(18, 18, 18));
    settings().autoWarmthEnabled.set(false);
    settings().warmthLevel.set(1);
    launch();
    const auto warm = seen(external, Qt::white);
    EXPECT_GT(warm.red(), warm.blue()) << "gray should be warm if the tables are";
}

} // namespace
} // namespace nocta
