#include "tour/DesktopScene.h"

#include "support/Face.h"

#include <QGraphicsView>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <optional>

namespace nocta {
namespace {

using namespace std::chrono_literals;

class DesktopSceneTest : public TestDesktop {
protected:
    WidgetViews realViews{instances()};
    std::optional<AppDelegate> program;
    std::optional<DesktopScene> scene;

    void SetUp() override {
        desktop.displays.plug({.id = builtIn,
                               .isBuiltIn = true,
                               .isMain = true,
                               .bounds = {0, 0, 800, 600},
                               .backlight = 1});
        desktop.displays.plug({.id = external, .bounds = {800, 0, 640, 480}});
        settings().isFirstLaunch.set(false);
        settings().autoWarmthEnabled.set(false);
        settings().warmthLevel.set(0);
        settings().unifiedBrightness.set(1);
        program.emplace(instances(), realViews);
        desktop.application.launch(*program);
        scene.emplace(desktop);
    }
    void TearDown() override {
        desktop.application.terminate();
        program.reset();
        scene.reset();
    }

    void clickAt(const QPointF& place) {
        scene->refresh();
        QGraphicsView view(&*scene);
        view.setSceneRect(0, 0, 1440, 600);
        view.resize(1500, 700);
        view.show();
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.mapFromScene(place));
    }
    /// Returns the fraction of pixels that differ between two pictures.
    static double difference(const QImage& a, const QImage& b) {
        int count = 0;
        for (int y = 0; y < a.height(); ++y) {
            for (int x = 0; x < a.width(); ++x) {
                count += a.pixel(x, y) == b.pixel(x, y) ? 0 : 1;
            }
        }
        return static_cast<double>(count) / (a.width() * a.height());
    }
    static int brightest(const QImage& picture) {
        int most = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                most = std::max(most, qGreen(picture.pixel(x, y)));
            }
        }
        return most;
    }
    static constexpr QPointF statusItem{800 - 96 - 17, 14};
};

TEST_F(DesktopSceneTest, EveryDisplayIsPaintedAtItsSize) {
    EXPECT_EQ(scene->picture(builtIn).size(), QSize(800, 600));
    EXPECT_EQ(scene->picture(external).size(), QSize(640, 480));
    EXPECT_EQ(difference(scene->picture(external), scene->picture(external)), 0)
        << "both pictures should be equal";
}

TEST_F(DesktopSceneTest, ClickOnTheStatusItemOpensThePopoverAndClickElsewhereClosesIt) {
    const auto before = scene->picture(builtIn);
    const auto beside = scene->picture(external);
    clickAt(statusItem);
    ASSERT_TRUE(desktop.popover.isShown());
    EXPECT_GT(difference(before, scene->picture(builtIn)), 0.1);
    EXPECT_EQ(difference(beside, scene->picture(external)), 0)
        << "the popover should be entirely on its display";
    clickAt({20, 14});
    EXPECT_FALSE(desktop.popover.isShown());
    EXPECT_EQ(difference(before, scene->picture(builtIn)), 0);
}

TEST_F(DesktopSceneTest, ControlsOfThePopoverWork) {
    desktop.statusBar.click();
    scene->refresh();
    const auto before = scene->picture(external);
    auto* const content = static_cast<QWidget*>(desktop.popover.contentView()->nativeView());
    auto* const toggle = content->findChild<QAbstractButton*>(QStringLiteral("grayscaleToggle"));
    auto* const proxy = content->graphicsProxyWidget();
    ASSERT_NE(proxy, nullptr);
    clickAt(proxy->mapToScene(QPointF(toggle->mapTo(content, toggle->rect().center()))));
    EXPECT_TRUE(settings().grayscaleEnabled.get());
    desktop.runLoop.advance(1s);
    const auto gray = scene->picture(external);
    const auto colorOfSky = [](const QImage& picture) {
        const auto sky = picture.pixel(600, 60);
        return std::abs(qRed(sky) - qBlue(sky));
    };
    EXPECT_GT(colorOfSky(before), 40);
    EXPECT_LT(colorOfSky(gray), 6) << "only the tint of the white point should remain";
    EXPECT_GT(difference(before, gray), 0.5);
}

TEST_F(DesktopSceneTest, BrightnessIsVisibleOnEveryDisplay) {
    const auto brightBuiltIn = brightest(scene->picture(builtIn));
    const auto brightExternal = brightest(scene->picture(external));
    settings().unifiedBrightness.set(0.6);
    EXPECT_LT(brightest(scene->picture(builtIn)), brightBuiltIn) << "the backlight should be lower";
    EXPECT_EQ(brightest(scene->picture(external)), brightExternal)
        << "a display without a backlight should not change";
    settings().unifiedBrightness.set(0.25);
    EXPECT_NEAR(brightest(scene->picture(external)), brightExternal / 2.0, 2);
}

TEST_F(DesktopSceneTest, WindowsAndDisplaysCanBeAddedAndRemoved) {
    const auto before = scene->picture(builtIn);
    program->showPreferencesWindow();
    EXPECT_GT(difference(before, scene->picture(builtIn)), 0.1);
    auto* const content =
        static_cast<QWidget*>(desktop.appWindows.windows().front().content->nativeView());
    clickAt(content->graphicsProxyWidget()->mapToScene(QPointF(18, -14)));
    desktop.runLoop.advance(0s);
    EXPECT_TRUE(desktop.appWindows.windows().empty());
    EXPECT_EQ(difference(before, scene->picture(builtIn)), 0);
    desktop.displays.unplug(external);
    scene->refresh();
    EXPECT_FALSE(scene->itemsBoundingRect().intersects(QRectF(900, 100, 100, 100)));
    desktop.displays.plug({.id = external, .bounds = {800, 0, 640, 480}});
    EXPECT_EQ(scene->picture(external).size(), QSize(640, 480));
}

TEST_F(DesktopSceneTest, BreakCoversEveryDisplay) {
    settings().breakIntervalMinutes.set(1);
    desktop.runLoop.advance(0s);
    breakTimer().start();
    const auto before = scene->picture(external);
    desktop.runLoop.advance(61s);
    EXPECT_GT(difference(before, scene->picture(external)), 0.95);
    EXPECT_LT(brightest(scene->picture(external).copy(0, 0, 640, 60)), 80)
        << "the cover should be dark";
}

} // namespace
} // namespace nocta
