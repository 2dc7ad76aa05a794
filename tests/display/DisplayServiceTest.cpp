#include "display/DisplayService.h"

#include "support/TestDesktop.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nocta {
namespace {

class DisplayServiceTest : public TestDesktop {
protected:
    std::vector<std::string> names() {
        std::vector<std::string> found;
        for (const auto& display : displayService().activeDisplays()) {
            found.push_back(display.name);
        }
        return found;
    }
    std::optional<DisplayId> mainId() {
        const auto& main = displayService().mainDisplay.get();
        return main ? std::optional(main->id) : std::nullopt;
    }
};

TEST_F(DisplayServiceTest, ListIsEmptyUntilTheFirstRefresh) {
    plugBuiltIn();
    EXPECT_TRUE(displayService().displays.get().empty());
    EXPECT_EQ(mainId(), std::nullopt);
    displayService().refreshDisplays();
    EXPECT_EQ(displayService().displays.get().size(), 1U);
    EXPECT_EQ(mainId(), builtIn);
}

TEST_F(DisplayServiceTest, ActiveDisplaysDescribeEachDisplay) {
    desktop.displays.plug({.id = 9,
                           .isMain = true,
                           .mode = DisplayMode{2560, 1440},
                           .bounds = {-1280, 20, 1280, 720}});
    const DisplayInfo expected{.id = 9,
                               .name = "2560x1440",
                               .isBuiltIn = false,
                               .isMain = true,
                               .bounds = {-1280, 20, 1280, 720},
                               .currentBrightness = 1.0F,
                               .supportsBrightnessControl = false};
    EXPECT_EQ(displayService().activeDisplays(), std::vector{expected});
}

TEST_F(DisplayServiceTest, BuiltInDisplayHasItsNameAndABacklightInAnyMode) {
    desktop.displays.plug({.id = 1, .isBuiltIn = true});
    desktop.displays.plug({.id = 2, .isBuiltIn = true, .mode = std::nullopt});
    EXPECT_EQ(names(), (std::vector<std::string>{"Built-in Display", "Built-in Display"}));
    EXPECT_TRUE(displayService().activeDisplays()[0].supportsBrightnessControl);
}

TEST_F(DisplayServiceTest, ExternalDisplayWithoutAModeIsNamedByItsId) {
    desktop.displays.plug({.id = 4294967295U, .mode = std::nullopt});
    EXPECT_EQ(names(), std::vector<std::string>{"Display 4294967295"});
}

TEST_F(DisplayServiceTest, MainDisplayIsTheFlaggedOneOrElseTheFirst) {
    plugExternal(5);
    plugExternal(4);
    displayService().refreshDisplays();
    EXPECT_EQ(mainId(), 5U);
    desktop.displays.display(4).isMain = true;
    displayService().refreshDisplays();
    EXPECT_EQ(mainId(), 4U);
}

TEST_F(DisplayServiceTest, ListIsCountedAndThenReadCompletely) {
    for (DisplayId id = 1; id <= 40; ++id) {
        plugExternal(id);
    }
    EXPECT_EQ(names().size(), 40U);
    EXPECT_EQ(calls("getActiveDisplayList"),
              (std::vector<std::string>{"getActiveDisplayList 0", "getActiveDisplayList 40"}));
}

TEST_F(DisplayServiceTest, ListThatCannotBeReadIsEmpty) {
    plugBuiltIn();
    displayService().refreshDisplays();
    desktop.displays.listFails = true;
    displayService().refreshDisplays();
    EXPECT_TRUE(displayService().displays.get().empty());
    EXPECT_EQ(mainId(), std::nullopt);
}

TEST_F(DisplayServiceTest, ActiveDisplaysDoNotChangeThePublishedState) {
    displayService().refreshDisplays();
    plugBuiltIn();
    EXPECT_EQ(names().size(), 1U);
    EXPECT_TRUE(displayService().displays.get().empty());
}

TEST_F(DisplayServiceTest, ScreenParameterNotificationRefreshesTheListAndTheMainDisplay) {
    displayService().startObserving(desktop.notificationCenter);
    plugBuiltIn();
    EXPECT_EQ(displayService().displays.get().size(), 1U);
    EXPECT_EQ(mainId(), builtIn);
    plugExternal();
    desktop.displays.unplug(builtIn);
    EXPECT_EQ(displayService().displays.get().size(), 1U);
    EXPECT_EQ(mainId(), external);
    desktop.displays.unplug(external);
    EXPECT_TRUE(displayService().displays.get().empty());
    EXPECT_EQ(mainId(), std::nullopt);
}

TEST_F(DisplayServiceTest, ListIsPublishedBeforeTheMainDisplay) {
    std::vector<std::string> published;
    const auto list =
        displayService().displays.subscribe([&](const std::vector<DisplayInfo>& displays) {
            published.push_back(std::to_string(displays.size()) + " displays");
            EXPECT_EQ(mainId(), std::nullopt) << "the old main display should still be published";
        });
    const auto main =
        displayService().mainDisplay.subscribe([&](const std::optional<DisplayInfo>& display) {
            published.push_back("main " + std::to_string(display.value().id));
            EXPECT_EQ(displayService().displays.get().size(), 1U);
        });
    plugBuiltIn();
    displayService().refreshDisplays();
    EXPECT_EQ(published, (std::vector<std::string>{"1 displays", "main 1"}));
}

/// Behaves as if a display were unplugged after the displays are counted and before they are
/// listed.
class ShrinkingDisplays final : public Displays {
public:
    Status getActiveDisplayList(std::span<DisplayId> ids, std::uint32_t& count) override {
        count = ids.empty() ? 2 : 1;
        if (!ids.empty()) {
            ids[0] = 6;
        }
        return statusSuccess;
    }
    Rect displayBounds(DisplayId) override { return {}; }
    bool displayIsMain(DisplayId) override { return false; }
    bool displayIsBuiltin(DisplayId) override { return false; }
    std::optional<DisplayMode> displayCopyDisplayMode(DisplayId) override { return std::nullopt; }
};

TEST(DisplayServiceRaceTest, DisplayUnpluggedDuringTheReadIsNotInTheList) {
    ShrinkingDisplays displays;
    const DisplayService service(displays);
    const auto list = service.activeDisplays();
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].name, "Display 6");
}

} // namespace
} // namespace nocta
