#include "backends/linux/shell/QtOnLayers.h"
#include "backends/linux/shell/QtPopover.h"
#include "backends/linux/wayland/LayerShellProtocol.h"

#include <QHelpEvent>
#include <QLabel>
#include <QPushButton>

#include <memory>
#include <utility>
#include <vector>

// Tests the layer-shell popover, as seen by the compositor.

namespace nocta {
namespace {

constexpr std::uint32_t top = ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP;
constexpr std::uint32_t bottom = ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM;
constexpr std::uint32_t left = ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT;
constexpr std::uint32_t right = ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;
constexpr std::uint32_t allEdges = top | bottom | left | right;

/// A button with a tool tip.
class ButtonView final : public View {
public:
    ButtonView() { button_.setToolTip(QStringLiteral("Tool tip")); }
    void* nativeView() override { return &button_; }

private:
    QPushButton button_;
};

/// A text that needs several lines, and then more height than its smallest size says.
class WrappedView final : public View {
public:
    WrappedView() {
        label_.setWordWrap(true);
        label_.setMinimumWidth(1);
        label_.setText(QStringLiteral("several words ").repeated(100));
    }
    void* nativeView() override { return &label_; }
    int heightFor(int width) const { return label_.heightForWidth(width); }

private:
    QLabel label_;
};

class NoStatusItem final : public StatusItem {
public:
    void setImage(std::string_view /*symbolName*/, std::string_view /*description*/) override {}
    void setAction(std::function<void()> /*action*/) override {}
    void setMenu(std::unique_ptr<View> /*menu*/) override {}
};

class LayerPopoverTest : public ::testing::Test, protected QtOnLayers {
protected:
    static constexpr int contentWidth = 300;
    static constexpr int contentHeight = 200;

    NoStatusItem item;
    QtPopover popover{layerShell, nullptr, false};

    /// Begins to show the popover by opening the transparent windows that locate the pointer.
    void open(std::unique_ptr<View> view = std::make_unique<ButtonView>()) {
        popover.setContentSize(contentWidth, contentHeight);
        popover.setBehavior(PopoverBehavior::transient);
        popover.setContentView(std::move(view));
        popover.show(item);
    }
    /// Shows the popover and returns its layer. The popover's layer is the last one, above a
    /// transparent window for each output.
    TestLayer openInCorner(std::size_t outputs = 1) {
        open();
        expectSoon([&](const auto& layers) { return layers.size() == outputs + 1; });
        return compositor.mapped().at(outputs);
    }
    void expectClosed() {
        EXPECT_TRUE(serveUntil([&] { return !popover.isShown(); }));
        expectSoon([](const auto& layers) { return layers.empty(); });
    }
};

TEST_F(LayerPopoverTest, OpensAtTheTopRightWithoutAPointer) {
    const auto layer = openInCorner();
    EXPECT_EQ(layer.output, "");
    EXPECT_EQ(layer.layer, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY)
        << "the popover should be above the transparent windows";
    EXPECT_EQ(layer.anchors, top | right);
    EXPECT_EQ(layer.exclusiveZone, 0) << "panels should not be covered";
    EXPECT_EQ(compositor.keyboardFocus(), 1U);
    constexpr auto shadow = 16;
    EXPECT_EQ(layer.width, contentWidth + 2 * shadow);
    EXPECT_EQ(layer.height, contentHeight + 2 * shadow);
    EXPECT_EQ(layer.margin, 4 - shadow) << "the shadow should reach beyond the margin";
    EXPECT_EQ(layer.alpha, 255);
    EXPECT_TRUE(popover.isShown());
}

TEST_F(LayerPopoverTest, GrowsForTextThatWraps) {
    auto view = std::make_unique<WrappedView>();
    const auto height = view->heightFor(contentWidth);
    ASSERT_GT(height, contentHeight);
    open(std::move(view));
    expectSoon([](const auto& layers) { return layers.size() == 2; });
    constexpr auto shadow = 16;
    const auto layer = compositor.mapped().at(1);
    EXPECT_EQ(layer.width, contentWidth + 2 * shadow);
    EXPECT_EQ(layer.height, height + 2 * shadow);
}

TEST_F(LayerPopoverTest, TransparentWindowFillsEachOutput) {
    compositor.outputs().addOutput();
    EXPECT_TRUE(serveUntil([] { return QGuiApplication::screens().size() == 2; }));
    compositor.configureNew(0, 0); // the client chooses the size
    openInCorner(2);
    for (std::size_t output = 0; output < 2; ++output) {
        const auto layer = compositor.mapped().at(output);
        EXPECT_EQ(layer.output, output == 0 ? "DP-1" : "DP-2");
        EXPECT_EQ(layer.anchors, allEdges);
        EXPECT_EQ(layer.keyboard, ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_NONE);
        EXPECT_TRUE(layer.acceptsInput);
        EXPECT_EQ(layer.alpha, 0);
        EXPECT_EQ(layer.width, 1280);
        EXPECT_EQ(layer.height, 720);
    }
}

TEST_F(LayerPopoverTest, OpensInTheCornerNearestToThePointer) {
    struct Case {
        int x;
        int y;
        std::uint32_t anchors;
    };
    for (const auto& [x, y, anchors] :
         {Case{1, 719, bottom | left}, Case{1279, 719, bottom | right}, Case{1, 1, top | left},
          Case{1279, 1, top | right}}) {
        compositor.putPointerIntoNext(x, y);
        openInCorner();
        EXPECT_EQ(compositor.mapped().at(1).output, "DP-1");
        EXPECT_EQ(compositor.mapped().at(1).anchors, anchors);
        popover.close();
    }
}

TEST_F(LayerPopoverTest, ClickElsewhereClosesIt) {
    openInCorner();
    compositor.movePointer(0, 100, 100);
    compositor.click();
    expectClosed();
}

TEST_F(LayerPopoverTest, EscapeClosesIt) {
    openInCorner();
    ASSERT_EQ(compositor.keyboardFocus(), 1U);
    compositor.press(TestSeat::escape);
    expectClosed();
}

TEST_F(LayerPopoverTest, LosingKeyboardFocusClosesIt) {
    openInCorner();
    EXPECT_TRUE(serveUntil([] { return QGuiApplication::focusWindow() != nullptr; }));
    compositor.takeKeyboard();
    expectClosed();
}

TEST_F(LayerPopoverTest, ClosesWhenTheCompositorClosesItsSurface) {
    openInCorner();
    compositor.close(1);
    expectClosed();
    openInCorner();
    EXPECT_TRUE(popover.isShown());
}

TEST_F(LayerPopoverTest, ClosesIfTheCompositorNeverShowsItsSurface) {
    compositor.closeNew();
    open();
    EXPECT_TRUE(popover.isShown());
    expectClosed();
}

TEST_F(LayerPopoverTest, OutputCanBeRemovedWhileItIsOpen) {
    compositor.outputs().addOutput();
    EXPECT_TRUE(serveUntil([] { return QGuiApplication::screens().size() == 2; }));
    openInCorner(2);
    compositor.removeOutput();
    EXPECT_TRUE(serveUntil([] { return QGuiApplication::screens().size() == 1; }));
    expectSoon([](const auto& layers) { return layers.size() == 2; });
    popover.close();
    expectClosed();
}

TEST_F(LayerPopoverTest, CanBeClosedBeforeItAppears) {
    open();
    popover.close();
    expectClosed();
    openInCorner();
}

TEST_F(LayerPopoverTest, CanBeShownAgainImmediately) {
    openInCorner();
    popover.close();
    EXPECT_FALSE(popover.isShown());
    openInCorner();
    EXPECT_TRUE(popover.isShown());
}

TEST_F(LayerPopoverTest, ToolTipIsInsideThePopover) {
    openInCorner();
    auto* const button = [] {
        QPushButton* found = nullptr;
        for (auto* const widget : QApplication::allWidgets()) {
            found = found == nullptr ? qobject_cast<QPushButton*>(widget) : found;
        }
        return found;
    }();
    ASSERT_NE(button, nullptr);
    const auto surfaces = compositor.surfaceCount();
    QHelpEvent hover(QEvent::ToolTip, QPoint(5, 5), button->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(button, &hover);
    const auto labels = button->window()->findChildren<QLabel*>();
    ASSERT_EQ(labels.size(), 1);
    EXPECT_TRUE(labels[0]->isVisible());
    EXPECT_EQ(labels[0]->text(), button->toolTip());
    EXPECT_TRUE(button->window()->rect().contains(labels[0]->geometry()));
    settle();
    EXPECT_EQ(compositor.surfaceCount(), surfaces);
}

} // namespace
} // namespace nocta
