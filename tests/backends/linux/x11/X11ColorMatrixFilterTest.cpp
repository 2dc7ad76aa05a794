#include "backends/linux/x11/X11ColorMatrixFilter.h"

#include "backends/linux/x11/X11Session.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace nocta {
namespace {

using Numbers = std::vector<std::uint32_t>;

Numbers numbersOf(const ColorMatrix& matrix) {
    return {matrix.begin(), matrix.end()};
}

class X11ColorMatrixFilterTest : public ::testing::TestWithParam<XServer::Kind> {
protected:
    X11Session x{GetParam()};
    /// A matrix that no real color space uses.
    Numbers previous = {7, 1, 0, 0, 3, 0x80000000, 0, 0, 9, 1, 0, 0, 0, 0, 0, 0, 11, 0};
    Numbers gray = numbersOf(grayMatrix());
    std::optional<X11ColorMatrixFilter> filter;

    void SetUp() override {
        if (GetParam() == XServer::Kind::xorgDummy) {
            x.server.plugSecondOutput();
            ASSERT_TRUE(serveUntil([&] { return x.list().size() == 2; }));
        }
        x.client.setOutputProperty("CTM", previous);
        makeFilter();
    }
    void makeFilter() {
        filter.reset();
        filter.emplace(x.connection, x.displays, x.notificationCenter, x.guardian);
    }
    std::vector<Numbers> shown() {
        x.settle();
        std::vector<Numbers> matrices;
        for (const auto output : x.client.activeOutputs()) {
            matrices.push_back(x.client.outputProperty("CTM", output));
        }
        return matrices;
    }
    std::vector<Numbers> everywhere(const Numbers& matrix) {
        return std::vector(x.client.activeOutputs().size(), matrix);
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, X11ColorMatrixFilterTest,
                         ::testing::Values(XServer::Kind::xvfb, XServer::Kind::xorgDummy),
                         [](const auto& instance) {
                             return instance.param == XServer::Kind::xvfb ? "Xvfb"
                                                                          : "XorgWithTwoOutputs";
                         });

TEST(ColorMatrices, GrayMatrixPreservesWhite) {
    const auto matrix = grayMatrix();
    for (std::size_t row = 0; row < 3; ++row) {
        std::uint64_t sum = 0;
        for (std::size_t column = 0; column < 3; ++column) {
            const auto place = 2 * (3 * row + column);
            sum += matrix[place] + (std::uint64_t{matrix[place + 1]} << 32);
        }
        EXPECT_EQ(sum, std::uint64_t{1} << 32);
    }
}

TEST_P(X11ColorMatrixFilterTest, OnTurnsEveryDisplayGrayAndOffRestoresTheOldMatrices) {
    EXPECT_TRUE(filter->isAvailable());
    EXPECT_FALSE(filter->isOn());
    filter->setOn(true);
    EXPECT_EQ(shown(), everywhere(gray));
    EXPECT_TRUE(filter->isOn());
    filter->setOn(true);
    filter->setOn(false);
    EXPECT_EQ(shown(), everywhere(previous));
    EXPECT_FALSE(filter->isOn());
    filter->setOn(false);
    filter->setOn(true);
    EXPECT_EQ(shown(), everywhere(gray));
    filter.reset();
    EXPECT_EQ(shown(), everywhere(previous));
}

TEST_P(X11ColorMatrixFilterTest, ExistingGrayIsDetected) {
    x.client.setOutputProperty("CTM", gray);
    EXPECT_TRUE(filter->isOn());
    filter->setOn(false);
    EXPECT_EQ(shown(), everywhere(gray)) << "gray that Nocta did not set should be kept";
}

TEST_P(X11ColorMatrixFilterTest, InvalidMatrixPropertyIsNotChanged) {
    for (const auto& numbers : {Numbers{}, Numbers(17, 1), Numbers(19, 1)}) {
        x.client.setOutputProperty("CTM", numbers);
        EXPECT_FALSE(filter->isAvailable());
        filter->setOn(true);
        EXPECT_EQ(shown(), everywhere(numbers));
        filter->setOn(false);
    }
}

TEST_P(X11ColorMatrixFilterTest, WarmthCanChangeWhileTheScreenIsGray) {
    const auto crtc = x.client.activeCrtcs().at(0);
    const auto factory = x.client.ramp(crtc);
    const auto tables = X11Session::tables({1.0F, 0.8F, 0.6F});
    x.set(x.list()[0], tables);
    filter->setOn(true);
    x.gammaOutput.displayRestoreColorSyncSettings();
    EXPECT_EQ(x.client.ramp(crtc), factory);
    EXPECT_EQ(shown(), everywhere(gray));

    x.client.disconnect(x.connection.window()); // the guardian restores the matrices
    EXPECT_TRUE(serveUntil([&] { return !x.connection.isOpen(); }));
    filter.reset();
    EXPECT_TRUE(serveUntil([&] { return shown() == everywhere(previous); }));
}

TEST_P(X11ColorMatrixFilterTest, GrayLeftByADeadProgramIsRestoredByTheNext) {
    ColorMatrix matrix{};
    std::ranges::copy(previous, matrix.begin());
    FactoryMatrices matrices;
    for (const auto output : x.client.activeOutputs()) {
        matrices.emplace(output, matrix);
    }
    storeFactoryMatrices(x.connection.get(), x.connection.root(), matrices);
    x.connection.synchronize();
    x.client.setOutputProperty("CTM", gray);
    makeFilter();
    EXPECT_FALSE(filter->isOn())
        << "the filter should be off even before the matrices are restored";
    EXPECT_EQ(shown(), everywhere(previous));
    EXPECT_FALSE(filter->isOn());
}

TEST_P(X11ColorMatrixFilterTest, OnlyTheNewestChangeWaitsForTheGuardian) {
    filter->setOn(true);
    EXPECT_TRUE(filter->isOn());
    filter->setOn(false);
    EXPECT_FALSE(filter->isOn());
    EXPECT_EQ(shown(), everywhere(previous));
    filter->setOn(false);
    filter->setOn(true);
    EXPECT_EQ(shown(), everywhere(gray));

    filter.reset();
    makeFilter();
    filter->setOn(true);
    filter.reset(); // before the guardian has answered
    EXPECT_EQ(shown(), everywhere(previous));
}

class HotplugOfGrayTest : public X11ColorMatrixFilterTest {};
INSTANTIATE_TEST_SUITE_P(Servers, HotplugOfGrayTest, ::testing::Values(XServer::Kind::xorgDummy));

TEST_P(HotplugOfGrayTest, NewDisplayTurnsGray) {
    x.server.unplugSecondOutput();
    ASSERT_TRUE(serveUntil([&] { return x.list().size() == 1; }));
    filter->setOn(true);
    x.server.plugSecondOutput();
    ASSERT_TRUE(serveUntil([&] { return x.list().size() == 2; }));
    EXPECT_EQ(shown(), everywhere(gray));
    filter->setOn(false);
    EXPECT_EQ(shown(), everywhere(previous));
}

} // namespace
} // namespace nocta
