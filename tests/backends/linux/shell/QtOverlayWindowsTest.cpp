#include "backends/linux/shell/QtOverlayWindows.h"

#include "backends/linux/shell/QtRunLoop.h"
#include "backends/linux/x11/X11KeyEvents.h"
#include "backends/virtual/VirtualDesktop.h"
#include "contracts/EarlierTypingContract.h"
#include "contracts/OverlayWindowsContract.h"
#include "support/EventLoop.h"
#include "support/PressCounter.h"
#include "support/Process.h"
#include "support/XClient.h"
#include "support/XServer.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <QWindow>
#include <QtGui/qguiapplication_platform.h>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <chrono>
#include <memory>
#include <vector>

// Tests Qt's windows on a private X server, as seen by another client. Most tests use virtual
// time.

namespace nocta {
namespace {

using namespace std::chrono_literals;

class Content final : public View {
public:
    void* nativeView() override { return &widget_; }

private:
    QWidget widget_;
};

constexpr xcb_keysym_t space = 0x20;

/// Qt on a private X server, and another client that observes the server.
struct QtOnPrivateServer {
    explicit QtOnPrivateServer(XServer::Kind kind) : server(kind) {}

    TemporaryFolder home;
    bool isOnX11 = qputenv("QT_QPA_PLATFORM", "xcb");
    bool isWithoutBus =
        qputenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + home.path() + "/no-bus").c_str());
    XServer server;
    XClient client;
    int argumentCount = 1;
    char name[6] = "tests";
    char* arguments[2] = {name, nullptr};
    QApplication application{argumentCount, arguments};
    VirtualDesktop desktop;

    double opacity(xcb_window_t id) {
        return client.number(id, "_NET_WM_WINDOW_OPACITY") / double{0xFFFFFFFF};
    }
};

} // namespace

/// Uses virtual time and simulated typing.
class QtOverlayWindowsHarness : QtOnPrivateServer {
public:
    QtOverlayWindowsHarness() : QtOnPrivateServer(XServer::Kind::xorgDummy) {}

    OverlayWindows& overlayWindows() { return windows_; }
    static std::unique_ptr<View> makeContent() { return std::make_unique<Content>(); }
    void plug() {
        server.plugSecondOutput();
        EXPECT_TRUE(serveUntil([] { return QGuiApplication::screens().size() == 2; }));
    }
    void unplug() {
        server.unplugSecondOutput();
        EXPECT_TRUE(serveUntil([] { return QGuiApplication::screens().size() == 1; }));
    }
    std::vector<Rect> frames() {
        std::vector<Rect> frames;
        for (const auto& display : client.activeFrames()) {
            frames.push_back(frameOf(display));
        }
        return frames;
    }
    SeenOverlays seen() {
        auto* const x = application.nativeInterface<QNativeInterface::QX11Application>();
        auto* const qt = x->connection();
        // When this reply arrives, the server has processed all earlier requests from Qt.
        const XcbReply<xcb_get_input_focus_reply_t> answered(
            xcb_get_input_focus_reply(qt, xcb_get_input_focus(qt), nullptr));
        SeenOverlays seen;
        for (const auto& window : client.topWindows()) {
            seen.emplace_back(frameOf(window), opacity(window.id));
        }
        return seen;
    }
    void letPass(Duration duration) { desktop.runLoop.advance(duration); }
    bool press() {
        const auto before = gotten_.presses;
        const auto all = all_.presses;
        typing_.press(desktop.runLoop.monotonicNow());
        client.press(space);
        if (!seen().empty()) { // otherwise another program has keyboard focus
            EXPECT_TRUE(serveUntil([&] { return all_.presses > all; }));
        }
        return gotten_.presses > before;
    }

private:
    static Rect frameOf(const XClient::TopWindow& window) {
        return {static_cast<double>(window.x), static_cast<double>(window.y),
                static_cast<double>(window.width), static_cast<double>(window.height)};
    }

    // Qt calls the event filters in reverse order of installation: first `all_`, then the filter of
    // the windows, then `gotten_`.
    PressCounter gotten_{application};
    X11Connection connection_{desktop.runLoop};
    Typing typing_;
    LayerShell layerShell_; // unavailable on X11
    QtOverlayWindows windows_{desktop.runLoop, desktop.displays, layerShell_, &connection_,
                              &typing_};
    PressCounter all_{application};
};

INSTANTIATE_TYPED_TEST_SUITE_P(Qt, OverlayWindowsContract, QtOverlayWindowsHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Qt, EarlierTypingContract, QtOverlayWindowsHarness);

namespace {

class QtOverlayWindowsTest : public ::testing::Test, protected QtOnPrivateServer {
protected:
    QtOverlayWindowsTest() : QtOnPrivateServer(XServer::Kind::xvfb) {}

    LayerShell layerShell; // unavailable on X11
    QtOverlayWindows windows{desktop.runLoop, desktop.displays, layerShell, nullptr, nullptr};
    std::unique_ptr<OverlayWindow> window;
    std::vector<std::int64_t> keys;

    /// Shows a window and returns its ID.
    xcb_window_t show(QtOverlayWindows& covers) {
        window =
            covers.makeWindow(covers.screens().at(0), {.level = 1000, .collectionBehavior = 257},
                              std::make_unique<Content>());
        window->makeKeyAndOrderFront();
        EXPECT_TRUE(serveUntil([&] {
            return client.topWindows().size() == 1 && QGuiApplication::focusWindow() != nullptr;
        }));
        return client.topWindows().at(0).id;
    }
    Subscription listen(QtOverlayWindows& covers) {
        return covers.addLocalMonitorForKeyDown([this](const KeyDownEvent& event) {
            keys.push_back(event.keyCode);
            return true;
        });
    }
    /// Expects every step of a fade to reach the server. Qt's event loop does not run here, so
    /// steps that are not sent immediately never arrive.
    void expectEachStepOnTheServer(double target, Duration duration, int steps) {
        const auto id = client.topWindows().at(0).id;
        client.countWrites(id);
        window->animateAlpha(target, duration, TimingFunction::easeInEaseOut);
        for (int step = 1; step <= steps; ++step) {
            const auto before = opacity(id);
            desktop.runLoop.advance(duration / steps + 1ns);
            ASSERT_TRUE(waitUntil([&] {
                return client.writesTo("_NET_WM_WINDOW_OPACITY") == step;
            })) << step;
            EXPECT_GT((opacity(id) - before) * (target > 0.5 ? 1 : -1), 0) << step;
        }
        EXPECT_EQ(opacity(id), target);
    }
};

TEST_F(QtOverlayWindowsTest, EachStepOfAFadeReachesTheServerImmediately) {
    const auto id = show(windows);
    EXPECT_EQ(opacity(id), 0);
    expectEachStepOnTheServer(1, 400ms, 24);
    expectEachStepOnTheServer(0, 300ms, 18);
}

TEST_F(QtOverlayWindowsTest, EachStepOfAFadeReachesTheServerUnderACompositor) {
    client.becomeCompositor();
    const auto id = show(windows);
    EXPECT_EQ(opacity(id), 0);
    expectEachStepOnTheServer(1, 400ms, 24);
    expectEachStepOnTheServer(0, 300ms, 18);
}

TEST_F(QtOverlayWindowsTest, KeyHeldBeforeTheWindowOpensIsIgnoredUntilPressedAgain) {
    QtRunLoop runLoop;
    X11Connection connection(runLoop);
    X11KeyEvents keyEvents(connection, runLoop);
    QtOverlayWindows covers(runLoop, desktop.displays, layerShell, &connection,
                            &keyEvents.typing());
    const auto monitor = listen(covers);
    ASSERT_EQ(runToEnd({"xset", "-display", server.display(), "r", "rate", "50", "100"}), 0);
    connection.synchronize(); // the program has to select its events before the key press
    client.hold(space);
    ASSERT_TRUE(serveUntil([&] { return keyEvents.typing().last().has_value(); }));
    show(covers);
    const PressCounter counter(application); // installed last, so it counts all presses
    EXPECT_TRUE(serveUntil([&] { return counter.presses >= 10; }));
    EXPECT_EQ(keys, (std::vector<std::int64_t>{}));
    client.release(space);
    ASSERT_TRUE(serveUntil([&] { // wait for a pause in the typing
        return runLoop.monotonicNow() - *keyEvents.typing().last() > Typing::pause;
    }));
    client.press(space);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier);
    // Sends the press to Qt directly, so that Qt gets it before `keyEvents` does.
    QCoreApplication::sendEvent(QGuiApplication::focusWindow(), &press);
    EXPECT_EQ(keys, (std::vector<std::int64_t>{spaceKeyCode}));
    window.reset();
}

TEST_F(QtOverlayWindowsTest, OnlyRepeatsAreIgnoredWithoutTypingData) {
    const auto monitor = listen(windows);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier);
    QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, " ", true);
    QWindow other;
    QCoreApplication::sendEvent(&other, &repeat);
    EXPECT_EQ(keys.size(), 1U) << "without a cover, repeats should not be ignored";
    show(windows);
    auto* const cover = QGuiApplication::focusWindow();
    QCoreApplication::sendEvent(cover, &repeat);
    EXPECT_EQ(keys.size(), 1U);
    QCoreApplication::sendEvent(cover, &press);
    EXPECT_EQ(keys.size(), 2U);
}

} // namespace
} // namespace nocta
