#include "backends/linux/wayland/TintGammaOutput.h"

#include "backends/linux/wayland/LayerShellProtocol.h"
#include "backends/linux/wayland/WaylandSession.h"
#include "support/ShellCompositor.h"

#include <QCoreApplication>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace nocta {
namespace {

constexpr std::uint32_t allEdges =
    ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
    ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;
constexpr int halfAlpha = 128;

class TintGammaOutputTest : public ::testing::Test {
protected:
    ShellCompositor compositor;

private:
    int argumentCount_ = 1;
    char name_[6] = "tests";
    char* arguments_[2] = {name_, nullptr};
    QCoreApplication application_{argumentCount_, arguments_};

protected:
    WaylandSession session;
    TintGammaOutput gamma{session.connection, session.displays};

    ~TintGammaOutputTest() override {
        EXPECT_EQ(compositor.violations(), std::vector<std::string>{});
    }

    void plug() {
        compositor.outputs().addOutput();
        EXPECT_TRUE(serveUntil([&] { return session.displays.ids().size() == 2; }));
    }
    void setLevel(DisplayId display, float level) {
        EXPECT_EQ(WaylandSession::setLevel(gamma, display, level), statusSuccess);
    }
    void expectSoon(const std::function<bool(const std::vector<TestLayer>&)>& condition) {
        EXPECT_TRUE(serveUntil([&] {
            EXPECT_TRUE(session.connection.synchronize());
            return compositor.isSettled() && condition(compositor.mapped());
        }));
    }
    /// Expects layers with these alpha values, in the order of the outputs.
    void expectAlphas(const std::vector<int>& wanted) {
        std::vector<int> alphas;
        expectSoon([&](const auto& layers) {
            alphas.clear();
            for (const auto& layer : layers) {
                alphas.push_back(layer.alpha);
            }
            return alphas == wanted;
        });
        EXPECT_EQ(alphas, wanted);
    }
};

TEST_F(TintGammaOutputTest, CoversEachOutputAndLetsClicksThrough) {
    plug();
    EXPECT_TRUE(gamma.isAvailable());
    EXPECT_EQ(gamma.warmth(), Warmth::none);
    setLevel(1, 0.5F);
    setLevel(2, 0.25F);
    expectAlphas({halfAlpha, 191});
    const auto layers = compositor.mapped();
    EXPECT_EQ(layers.at(0).output, "DP-1");
    EXPECT_EQ(layers.at(1).output, "DP-2");
    for (const auto& layer : layers) {
        EXPECT_EQ(layer.layer, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY);
        EXPECT_EQ(layer.anchors, allEdges);
        EXPECT_EQ(layer.exclusiveZone, -1) << "panels should be dimmed";
        EXPECT_EQ(layer.keyboard, ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_NONE);
        EXPECT_FALSE(layer.acceptsInput);
        EXPECT_EQ(layer.width, 1280);
        EXPECT_EQ(layer.height, 720);
    }
}

TEST_F(TintGammaOutputTest, DarknessFollowsTheHighestLevelOfTheTables) {
    const std::vector<float> red = {0, 0.5F};
    const std::vector<float> green = {0, 0.4F};
    const std::vector<float> blue = {0, 0.2F};
    EXPECT_EQ(gamma.setDisplayTransferByTable(1, red, green, blue), statusSuccess);
    expectAlphas({halfAlpha});
    EXPECT_EQ(gamma.setDisplayTransferByTable(1, blue, red, green), statusSuccess);
    expectAlphas({halfAlpha});
    setLevel(1, -1);
    expectAlphas({255});
    setLevel(1, 0.5F);
    expectAlphas({halfAlpha});
}

TEST_F(TintGammaOutputTest, FullLevelRemovesTheLayer) {
    plug();
    setLevel(1, 0.5F);
    setLevel(2, 0.5F);
    expectAlphas({halfAlpha, halfAlpha});
    setLevel(1, 1);
    expectAlphas({halfAlpha});
    EXPECT_EQ(compositor.mapped().at(0).output, "DP-2");
    EXPECT_EQ(compositor.surfaceCount(), 1U);
}

TEST_F(TintGammaOutputTest, RestoringRemovesAllLayersImmediately) {
    plug();
    setLevel(1, 0.5F);
    setLevel(2, 0.5F);
    expectAlphas({halfAlpha, halfAlpha});
    gamma.displayRestoreColorSyncSettings();
    EXPECT_EQ(compositor.surfaceCount(), 0U);
    setLevel(1, 0.5F);
    expectAlphas({halfAlpha});
}

TEST_F(TintGammaOutputTest, RemovingAnOutputRemovesItsLayer) {
    plug();
    setLevel(1, 0.5F);
    setLevel(2, 0.5F);
    expectAlphas({halfAlpha, halfAlpha});
    compositor.removeOutput();
    EXPECT_TRUE(serveUntil([&] { return session.displays.ids().size() == 1; }));
    expectAlphas({halfAlpha});
    EXPECT_TRUE(serveUntil([&] {
        EXPECT_TRUE(session.connection.synchronize());
        return compositor.surfaceCount() == 1;
    }));
    EXPECT_NE(WaylandSession::setLevel(gamma, 2, 0.5F), statusSuccess);
    plug();
    expectAlphas({halfAlpha});
    setLevel(2, 0.25F);
    expectAlphas({halfAlpha, 191});
}

TEST_F(TintGammaOutputTest, OutputCanBeRemovedBeforeItsLayerAppears) {
    setLevel(1, 0.5F);
    for (const auto isReadBefore : {false, true}) {
        plug();
        if (!isReadBefore) {
            compositor.removeOutput(); // before the program reads the event
        }
        setLevel(2, 0.5F);
        if (isReadBefore) {
            EXPECT_TRUE(session.connection.synchronize());
            compositor.removeOutput();
        }
        EXPECT_TRUE(serveUntil([&] { return session.displays.ids().size() == 1; }));
        expectAlphas({halfAlpha});
    }
}

TEST_F(TintGammaOutputTest, ClosedLayerIsRecreatedByTheNextTable) {
    setLevel(1, 0.5F);
    expectAlphas({halfAlpha});
    compositor.close(0);
    session.settle();
    expectAlphas({});
    setLevel(1, 0.5F);
    expectAlphas({halfAlpha});
    EXPECT_EQ(compositor.surfaceCount(), 1U);
}

TEST_F(TintGammaOutputTest, LayerIsResized) {
    setLevel(1, 0.5F);
    expectAlphas({halfAlpha});
    compositor.configure(0, 1920, 1080);
    expectSoon([](const auto& layers) {
        return layers.size() == 1 && layers[0].width == 1920 && layers[0].height == 1080;
    });
}

TEST_F(TintGammaOutputTest, InvalidSizeIsReplacedByTheDisplaySize) {
    const auto expectFullSize = [&] {
        expectSoon([](const auto& layers) {
            return layers.size() == 1 && layers[0].width == 1280 && layers[0].height == 720 &&
                   layers[0].alpha == halfAlpha;
        });
    };
    for (const auto size : {0U, 32768U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(size);
        compositor.configureNew(size, size);
        setLevel(1, 0.5F);
        expectFullSize();
        compositor.configure(0, size, 100);
        expectFullSize();
        setLevel(1, 1);
    }
}

TEST(TintGammaOutput, IsUnavailableWithoutARequiredProtocol) {
    int argumentCount = 0;
    const QCoreApplication application(argumentCount, nullptr);
    for (const auto* const withheld :
         {"zwlr_layer_shell_v1", "wp_viewporter", "wl_compositor", "wl_shm"}) {
        const ShellCompositor compositor({withheld});
        WaylandSession session;
        TintGammaOutput gamma(session.connection, session.displays);
        EXPECT_FALSE(gamma.isAvailable()) << withheld;
        EXPECT_NE(WaylandSession::setLevel(gamma, 1, 0.5F), statusSuccess) << withheld;
        gamma.displayRestoreColorSyncSettings();
    }
}

} // namespace
} // namespace nocta
