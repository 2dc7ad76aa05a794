#include "display/GammaController.h"

#include "support/TestDesktop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>

namespace nocta {
namespace {

class GammaControllerTest : public TestDesktop {
protected:
    void start() { gamma().start(desktop.notificationCenter); }

    std::vector<float> redTable(DisplayId id) { return desktop.displays.display(id).red; }
    std::vector<float> blueTable(DisplayId id) { return desktop.displays.display(id).blue; }

    static std::vector<float> blueOf(std::int64_t kelvin, float dimming, float saturation) {
        const auto tables = makeGammaTables(kelvin, dimming, saturation);
        return {tables.blue.begin(), tables.blue.end()};
    }
};

TEST_F(GammaControllerTest, StartReadsTheListAndWritesNothing) {
    plugBuiltIn();
    plugExternal();
    EXPECT_TRUE(gamma().displays().empty());
    start();
    EXPECT_EQ(gamma().displays().size(), 2U);
    EXPECT_TRUE(calls("setDisplayTransferByTable").empty());
}

TEST_F(GammaControllerTest, EachSetterWritesEveryDisplayWithAllThreeInputs) {
    plugBuiltIn();
    plugExternal();
    start();
    gamma().setDimming(0.25F);
    gamma().setTemperature(3000);
    gamma().setSaturation(0.5F);
    EXPECT_EQ(calls("setDisplayTransferByTable").size(), 6U);
    for (const auto id : {builtIn, external}) {
        EXPECT_EQ(blueTable(id), blueOf(3000, 0.25F, 0.5F));
        EXPECT_EQ(gamma().currentDimming().at(id), 0.25F);
        EXPECT_EQ(gamma().currentTemperature().at(id), 3000);
        EXPECT_EQ(gamma().currentSaturation().at(id), 0.5F);
    }
}

TEST_F(GammaControllerTest, EachChannelIsWrittenToItsOwnTable) {
    plugBuiltIn();
    start();
    gamma().setTemperature(3000);
    const auto tables = makeGammaTables(3000, 0.0F, 1.0F);
    const auto& display = desktop.displays.display(builtIn);
    EXPECT_TRUE(std::ranges::equal(display.red, tables.red));
    EXPECT_TRUE(std::ranges::equal(display.green, tables.green));
    EXPECT_TRUE(std::ranges::equal(display.blue, tables.blue));
}

TEST_F(GammaControllerTest, EqualValuesAreWrittenAgain) {
    plugBuiltIn();
    start();
    gamma().setDimming(0.25F);
    gamma().setDimming(0.25F);
    EXPECT_EQ(calls("setDisplayTransferByTable").size(), 2U);
}

TEST_F(GammaControllerTest, DimmingAndSaturationAreClamped) {
    plugBuiltIn();
    start();
    struct Row {
        float given;
        float stored;
    };
    for (const auto& [given, stored] :
         {Row{1.5F, 1.0F}, Row{-0.2F, 0.0F}, Row{0.0F, 0.0F}, Row{1.0F, 1.0F},
          Row{std::numeric_limits<float>::infinity(), 1.0F},
          Row{-std::numeric_limits<float>::infinity(), 0.0F}}) {
        gamma().setDimming(given);
        gamma().setSaturation(given);
        EXPECT_EQ(gamma().currentDimming().at(builtIn), stored) << given;
        EXPECT_EQ(gamma().currentSaturation().at(builtIn), stored) << given;
    }
}

TEST_F(GammaControllerTest, TemperatureIsClamped) {
    plugBuiltIn();
    start();
    struct Row {
        std::int64_t given;
        std::int64_t stored;
    };
    for (const auto& [given, stored] :
         {Row{500, 1000}, Row{1000, 1000}, Row{1001, 1001}, Row{999, 1000}, Row{10000, 10000},
          Row{10001, 10000}, Row{20000, 10000}, Row{std::numeric_limits<std::int64_t>::min(), 1000},
          Row{std::numeric_limits<std::int64_t>::max(), 10000}}) {
        gamma().setTemperature(given);
        EXPECT_EQ(gamma().currentTemperature().at(builtIn), stored) << given;
    }
}

TEST_F(GammaControllerTest, SettersStoreAndWriteNothingWithoutDisplays) {
    start();
    gamma().setDimming(0.5F);
    gamma().setTemperature(3000);
    gamma().setSaturation(0.5F);
    EXPECT_TRUE(gamma().currentDimming().empty());
    EXPECT_TRUE(gamma().currentTemperature().empty());
    EXPECT_TRUE(gamma().currentSaturation().empty());
    EXPECT_TRUE(calls("setDisplayTransferByTable").empty());
}

TEST_F(GammaControllerTest, NewDisplayIsNotWrittenUntilTheNextSetterAndStartsNeutral) {
    plugBuiltIn();
    start();
    gamma().setDimming(0.5F);
    gamma().setTemperature(3000);
    gamma().setSaturation(0.25F);
    plugExternal();
    EXPECT_TRUE(redTable(external).empty()) << "plugging in should write nothing";

    gamma().setDimming(0.5F);
    EXPECT_EQ(blueTable(external), blueOf(6500, 0.5F, 1.0F));
    EXPECT_FALSE(gamma().currentTemperature().contains(external));
    EXPECT_FALSE(gamma().currentSaturation().contains(external));
    EXPECT_EQ(blueTable(builtIn), blueOf(3000, 0.5F, 0.25F))
        << "the built-in display should not change";

    gamma().setTemperature(3000);
    EXPECT_EQ(blueTable(external), blueOf(3000, 0.5F, 1.0F));
    gamma().setSaturation(0.25F);
    EXPECT_EQ(blueTable(external), blueOf(3000, 0.5F, 0.25F));
}

TEST_F(GammaControllerTest, RemovedDisplayKeepsItsValuesUntilItIsReconnected) {
    plugBuiltIn();
    plugExternal();
    start();
    const auto setAll = [this](float dimming, std::int64_t kelvin, float saturation) {
        gamma().setDimming(dimming);
        gamma().setTemperature(kelvin);
        gamma().setSaturation(saturation);
    };
    setAll(0.5F, 3000, 0.25F);
    desktop.displays.unplug(external);
    EXPECT_EQ(gamma().displays().size(), 1U);
    setAll(0.75F, 4000, 0.75F);
    EXPECT_EQ(gamma().currentDimming().at(external), 0.5F);
    EXPECT_EQ(gamma().currentTemperature().at(external), 3000);
    EXPECT_EQ(gamma().currentSaturation().at(external), 0.25F);

    plugExternal();
    gamma().setTemperature(5000);
    EXPECT_EQ(blueTable(external), blueOf(5000, 0.5F, 0.25F));
    EXPECT_EQ(blueTable(builtIn), blueOf(5000, 0.75F, 0.75F));
    gamma().setDimming(0.0F);
    EXPECT_EQ(blueTable(external), blueOf(5000, 0.0F, 0.25F));
}

TEST_F(GammaControllerTest, FailingDisplayDoesNotAffectTheOthers) {
    plugBuiltIn();
    plugExternal();
    plugExternal(secondExternal);
    start();
    desktop.displays.display(builtIn).gammaFails = true;
    gamma().setDimming(0.5F);
    EXPECT_EQ(calls("setDisplayTransferByTable").size(), 3U);
    EXPECT_EQ(shownDimming(external), 0.5F);
    EXPECT_EQ(shownDimming(secondExternal), 0.5F);
    EXPECT_EQ(gamma().currentDimming().at(builtIn), 0.5F) << "the value should be stored anyway";
}

TEST_F(GammaControllerTest, TableWithoutExactly256EntriesIsInvalid) {
    plugBuiltIn();
    const std::array<float, 257> levels{};
    const auto right = std::span(levels).first(256);
    for (const auto size : {0U, 255U, 257U}) {
        const auto wrong = std::span(levels).first(size);
        EXPECT_EQ(gamma().applyTables(wrong, right, right, builtIn), GammaError::invalidTable);
        EXPECT_EQ(gamma().applyTables(right, wrong, right, builtIn), GammaError::invalidTable);
        EXPECT_EQ(gamma().applyTables(right, right, wrong, builtIn), GammaError::invalidTable);
    }
    EXPECT_TRUE(calls("setDisplayTransferByTable").empty());
    EXPECT_EQ(gamma().applyTables(right, right, right, builtIn), std::nullopt);
}

TEST_F(GammaControllerTest, RefusedTableIsAnError) {
    const std::array<float, 256> levels{};
    EXPECT_EQ(gamma().applyTables(levels, levels, levels, 0xDEAD), GammaError::setTableFailed);
    static_assert(static_cast<int>(GammaError::displayNotFound) == 0);
    static_assert(static_cast<int>(GammaError::setTableFailed) == 1);
    static_assert(static_cast<int>(GammaError::invalidTable) == 2);
}

} // namespace
} // namespace nocta
