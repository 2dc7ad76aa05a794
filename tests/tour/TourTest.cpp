#include "support/Process.h"
#include "support/TimeZone.h"
#include "tour/Day.h"
#include "tour/TourPage.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>

namespace nocta {
namespace {

constexpr auto centralEurope = "CET-1CEST,M3.5.0,M10.5.0/3";

/// Simulates a day, writes its page into `folder` and returns the number of pictures.
std::size_t simulateDayIn(const std::string& folder) {
    Tour tour(QString::fromStdString(folder));
    simulateDay(tour);
    EXPECT_TRUE(tour.passed());
    EXPECT_TRUE(writeTour(tour));
    return tour.scenes().size();
}

TEST(Tour, SimulatedDayMeetsItsExpectationsAndIsReproducible) {
    const TimeZone zone(centralEurope);
    const TemporaryFolder first;
    const TemporaryFolder second;
    const auto pictures = simulateDayIn(first.path());
    EXPECT_GE(pictures, 20U);
    EXPECT_EQ(simulateDayIn(second.path()), pictures);
    std::size_t files = 0;
    const auto page = contentOf(first.path() + "/index.html");
    for (const auto& entry : std::filesystem::directory_iterator(first.path())) {
        const auto name = entry.path().filename().string();
        ++files;
        EXPECT_TRUE(contentOf(entry.path().string()) == contentOf(second.path() + "/" + name))
            << name;
        if (name.ends_with(".png")) {
            const std::regex shown("<img src=\"" + name + "\" alt=\"[^\"<>]+\">");
            EXPECT_TRUE(std::regex_search(page, shown)) << name;
        }
    }
    EXPECT_EQ(files, pictures + 2) << "there should be only the pictures, the page and the trace";
}

TEST(Tour, UnmetExpectationFailsTheTour) {
    const TemporaryFolder folder;
    Tour tour(QString::fromStdString(folder.path()));
    tour.launch();
    EXPECT_TRUE(tour.passed());
    tour.press("noSuchButton");
    EXPECT_FALSE(tour.passed());
    tour.quit();
}

TEST(Tour, UnwritableFolderFailsTheTour) {
    Tour tour(QStringLiteral("/nowhere"));
    tour.launch();
    tour.take(QStringLiteral("A picture"), {});
    EXPECT_FALSE(tour.passed());
    EXPECT_FALSE(writeTour(tour));
    tour.quit();
}

} // namespace
} // namespace nocta
