#include "backends/linux/shell/QtOnLayers.h"
#include "backends/linux/shell/QtOverlayWindows.h"
#include "backends/linux/wayland/LayerShellProtocol.h"
#include "backends/virtual/VirtualDesktop.h"
#include "contracts/OverlayWindowsContract.h"
#include "support/PressCounter.h"

#include <QGraphicsOpacityEffect>
#include <QScreen>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <vector>

// Tests the layer-shell covers, as seen by the compositor. All tests use virtual time.

namespace nocta {
namespace {

using namespace std::chrono_literals;

constexpr int opaque = 255;
constexpr std::uint32_t allEdges =
    ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
    ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;

/// Returns the alpha values of the content of all visible windows, in ascending order.
std::vector<int> paintedAlphas() {
    std::vector<int> alphas;
    for (const auto* const window : QApplication::topLevelWidgets()) {
        for (const auto* const child : window->findChildren<QWidget*>()) {
            if (const auto* const effect =
                    qobject_cast<QGraphicsOpacityEffect*>(child->graphicsEffect());
                effect != nullptr && window->isVisible()) {
                alphas.push_back(qRound(effect->opacity() * opaque));
            }
        }
    }
    std::ranges::sort(alphas);
    return alphas;
}

bool isPainted(const std::vector<TestLayer>& layers) {
    std::vector<int> alphas;
    for (const auto& layer : layers) {
        alphas.push_back(layer.alpha);
    }
    std::ranges::sort(alphas);
    return std::ranges::equal(alphas, paintedAlphas(),
                              [](int one, int other) { return std::abs(one - other) <= 1; });
}

} // namespace

/// Each output has 1280 × 720 points.
class LayerOverlayWindowsHarness : protected QtOnLayers {
public:
    OverlayWindows& overlayWindows() { return windows; }
    static std::unique_ptr<View> makeContent() { return std::make_unique<OpaqueView>(); }
    void plug() {
        compositor.outputs().addOutput();
        expectScreens(2);
    }
    void unplug() {
        compositor.removeOutput();
        expectScreens(1);
    }
    std::vector<Rect> frames() const {
        std::vector frames{frameOf("DP-1"), frameOf("DP-2")};
        frames.resize(static_cast<std::size_t>(QGuiApplication::screens().size()));
        return frames;
    }
    SeenOverlays seen() {
        expectSoon(isPainted);
        SeenOverlays seen;
        for (const auto& layer : compositor.mapped()) {
            auto frame = frameOf(layer.output);
            frame.width = layer.width;
            frame.height = layer.height;
            seen.emplace_back(frame, layer.alpha / double{opaque});
        }
        return seen;
    }
    void letPass(Duration duration) { desktop.runLoop.advance(duration); }
    bool press() {
        expectSoon(isPainted);
        const auto before = gotten_.presses;
        const auto all = all_.presses;
        compositor.press(TestSeat::space);
        if (compositor.keyboardFocus()) {
            EXPECT_TRUE(serveUntil([&] { return all_.presses > all; }));
        }
        return gotten_.presses > before;
    }

protected:
    VirtualDesktop desktop;

    static Rect frameOf(const std::string& output) {
        return {output == "DP-2" ? 1280.0 : 0.0, 0, 1280, 720};
    }
    static void expectScreens(int count) {
        EXPECT_TRUE(serveUntil([&] { return QGuiApplication::screens().size() == count; }));
    }

private:
    // Qt calls the event filters in reverse order of installation: first `all_`, then the filter of
    // the windows, then `gotten_`.
    PressCounter gotten_{application};

protected:
    std::optional<Rect> focusedScreen;
    QtOverlayWindows windows{desktop.runLoop, desktop.displays, layerShell,
                             nullptr,         nullptr,          [this] { return focusedScreen; }};

private:
    PressCounter all_{application};
};

INSTANTIATE_TYPED_TEST_SUITE_P(Layers, OverlayWindowsContract, LayerOverlayWindowsHarness);

namespace {

class LayerOverlayWindowsTest : public ::testing::Test, protected LayerOverlayWindowsHarness {
protected:
    using Covers = std::vector<std::unique_ptr<OverlayWindow>>;

    std::unique_ptr<OverlayWindow> show(const Screen& screen) {
        auto cover =
            windows.makeWindow(screen, {.level = 1000, .collectionBehavior = 257}, makeContent());
        cover->makeKeyAndOrderFront();
        return cover;
    }
    /// Covers all screens.
    Covers showAll() {
        Covers covers;
        for (const auto& screen : windows.screens()) {
            covers.push_back(show(screen));
        }
        expectSoon([&](const auto& layers) { return layers.size() == covers.size(); });
        return covers;
    }
    std::vector<std::uint32_t> keyboards() const {
        std::vector<std::uint32_t> keyboards;
        for (const auto& layer : compositor.mapped()) {
            keyboards.push_back(layer.keyboard);
        }
        return keyboards;
    }
    /// Expects the only cover to have the size of its screen.
    void expectFullSize() {
        expectSoon([](const auto& layers) {
            return layers.size() == 1 && layers[0].width == 1280 && layers[0].height == 720;
        });
    }

    static constexpr std::uint32_t none = ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_NONE;
    static constexpr std::uint32_t exclusive =
        ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE;
};

TEST_F(LayerOverlayWindowsTest, CoversAreInTheOverlayLayerOfTheirOutputs) {
    plug();
    const auto covers = showAll();
    const auto layers = compositor.mapped();
    ASSERT_EQ(layers.size(), 2U);
    EXPECT_EQ(layers[0].output, "DP-1");
    EXPECT_EQ(layers[1].output, "DP-2");
    for (const auto& layer : layers) {
        EXPECT_EQ(layer.layer, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY);
        EXPECT_EQ(layer.anchors, allEdges);
        EXPECT_EQ(layer.exclusiveZone, -1) << "panels should be covered";
        EXPECT_TRUE(layer.acceptsInput);
    }
}

TEST_F(LayerOverlayWindowsTest, OnlyTheNewestCoverRequestsKeyboardFocus) {
    plug();
    const auto covers = showAll();
    EXPECT_EQ(keyboards(), (std::vector{none, exclusive}));
    EXPECT_EQ(compositor.keyboardFocus(), 1U);
}

TEST_F(LayerOverlayWindowsTest, CoverOnTheFocusedScreenGetsKeyboardFocus) {
    plug();
    focusedScreen = frameOf("DP-1");
    auto covers = showAll();
    focusedScreen = frameOf("DP-2"); // as if the covers had changed the focus
    expectSoon([&](const auto&) { return keyboards() == std::vector{exclusive, none}; });
    EXPECT_EQ(compositor.keyboardFocus(), 0U);
    EXPECT_TRUE(press());
    covers[0]->orderOut();
    expectSoon([&](const auto& layers) {
        return layers.size() == 1 && keyboards() == std::vector{exclusive};
    });
}

TEST_F(LayerOverlayWindowsTest, NoCoverGetsKeyboardFocusWhileAllAreOrderedOut) {
    plug();
    focusedScreen = frameOf("DP-1");
    const auto covers = showAll();
    const auto before = compositor.focusGains();
    for (const auto& cover : covers) {
        cover->orderOut();
    }
    expectSoon([](const auto& layers) { return layers.empty(); });
    EXPECT_EQ(compositor.focusGains(), before);
}

TEST_F(LayerOverlayWindowsTest, AnotherCoverGetsKeyboardFocusWhenOneIsClosedOrOrderedOut) {
    plug();
    auto covers = showAll();
    covers.push_back(show(windows.screens().at(0)));
    expectSoon([](const auto& layers) { return layers.size() == 3; });
    compositor.close(2);
    expectSoon([&](const auto& layers) {
        return layers.size() == 2 && keyboards() == std::vector{none, exclusive};
    });
    EXPECT_TRUE(press());
    covers[1]->orderOut();
    expectSoon([&](const auto& layers) {
        return layers.size() == 1 && keyboards() == std::vector{exclusive};
    });
    EXPECT_TRUE(press());
}

TEST_F(LayerOverlayWindowsTest, ClosedCoverCanBeShownAgain) {
    const auto covers = showAll();
    compositor.close(0);
    EXPECT_TRUE(serveUntil([&] { return paintedAlphas().empty(); }));
    EXPECT_EQ(compositor.mapped().size(), 0U);
    covers[0]->animateAlpha(1, 400ms, TimingFunction::easeInEaseOut);
    letPass(1s);
    covers[0]->orderOut();
    EXPECT_EQ(seen().size(), 0U);
    covers[0]->makeKeyAndOrderFront();
    EXPECT_EQ(seen(), (SeenOverlays{{frameOf("DP-1"), 1}}));
}

TEST_F(LayerOverlayWindowsTest, RemovingAnOutputRemovesItsCover) {
    plug();
    const auto covers = showAll();
    for (const auto& cover : covers) {
        cover->animateAlpha(1, 400ms, TimingFunction::easeInEaseOut);
    }
    letPass(200ms);
    unplug();
    letPass(200ms);
    EXPECT_EQ(seen(), (SeenOverlays{{frameOf("DP-1"), 1}}));
    EXPECT_TRUE(serveUntil([&] { return compositor.keyboardFocus() == 0U; }));
    EXPECT_TRUE(press());
    plug();
    covers[1]->makeKeyAndOrderFront();
    covers[1]->orderOut();
    covers[0]->orderOut();
    EXPECT_EQ(seen().size(), 0U);
}

// A compositor may also remove the output before it closes the cover.
TEST_F(LayerOverlayWindowsTest, OutputCanBeRemovedBeforeItsCoverIsClosed) {
    plug();
    const auto covers = showAll();
    compositor.outputs().removeOutput();
    expectScreens(1);
    if (compositor.mapped().size() == 2) {
        compositor.close(1);
    }
    expectSoon([](const auto& layers) { return layers.size() == 1; });
    EXPECT_EQ(compositor.mapped().at(0).output, "DP-1");
    EXPECT_TRUE(serveUntil([&] { return compositor.keyboardFocus() == 0U; }));
    EXPECT_TRUE(press());
    covers[1]->orderOut();
    covers[0]->orderOut();
    EXPECT_EQ(seen().size(), 0U);
}

TEST_F(LayerOverlayWindowsTest, OutputCanBeRemovedBeforeItsCoverAppears) {
    plug();
    const auto first = show(windows.screens().at(0));
    const auto second = show(windows.screens().at(1));
    compositor.outputs().removeOutput();
    expectScreens(1);
    settle();
    second->orderOut();
    EXPECT_EQ(seen(), (SeenOverlays{{frameOf("DP-1"), 0}}));
}

TEST_F(LayerOverlayWindowsTest, CoverIsResized) {
    const auto covers = showAll();
    compositor.configure(0, 1920, 1080);
    expectSoon([](const auto& layers) {
        return layers.size() == 1 && layers[0].width == 1920 && layers[0].height == 1080;
    });
}

TEST_F(LayerOverlayWindowsTest, InvalidSizeIsIgnored) {
    for (const auto size : {0U, 32768U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(size);
        compositor.configureNew(size, size);
        const auto covers = showAll();
        expectFullSize();
        compositor.configure(0, size, size);
        settle();
        expectFullSize();
        compositor.configure(0, size, 100);
        settle();
        expectFullSize();
        compositor.configure(0, 32767, 32767); // too large for an image
        settle();
        expectFullSize();
    }
}

TEST_F(LayerOverlayWindowsTest, FadeIsPainted) {
    const auto covers = showAll();
    auto alpha = compositor.mapped().at(0).alpha;
    EXPECT_EQ(alpha, 0);
    covers[0]->animateAlpha(1, 400ms, TimingFunction::easeInEaseOut);
    for (int step = 1; step <= 8; ++step) {
        letPass(50ms + 1ns);
        expectSoon([&](const auto& layers) { return layers.at(0).alpha > alpha; });
        alpha = compositor.mapped().at(0).alpha;
    }
    EXPECT_EQ(alpha, opaque);
}

TEST_F(LayerOverlayWindowsTest, DestroyingAllCoversRemovesTheirSurfaces) {
    const auto surfaces = compositor.surfaceCount();
    {
        plug();
        const auto covers = showAll();
        EXPECT_GT(compositor.surfaceCount(), surfaces);
    }
    synchronize();
    EXPECT_EQ(compositor.surfaceCount(), surfaces);
}

} // namespace
} // namespace nocta
