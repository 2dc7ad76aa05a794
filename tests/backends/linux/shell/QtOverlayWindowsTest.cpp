#include "backends/linux/shell/QtOverlayWindows.h"

#include "backends/linux/shell/QtRunLoop.h"
#include "backends/linux/x11/X11KeyEvents.h"
#include "backends/virtual/VirtualDesktop.h"
#include "support/EventLoop.h"
#include "support/Process.h"
#include "support/XClient.h"
#include "support/XServer.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <QWindow>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <vector>

// Qt's windows on a private X server, as another client sees them. The time is virtual.

namespace nocta {
namespace {

using namespace std::chrono_literals;

class Content final : public View {
public:
    void* nativeView() override { return &widget_; }

private:
    QWidget widget_;
};

/// Counts the presses that reach a window of this program.
class PressCounter final : public QObject {
public:
    int presses = 0;

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override {
        presses += event->type() == QEvent::KeyPress && receiver->isWindowType() ? 1 : 0;
        return false;
    }
};

class QtOverlayWindowsTest : public ::testing::Test {
protected:
    static constexpr xcb_keysym_t space = 0x20;

    TemporaryFolder home;
    bool isWithoutBus =
        qputenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + home.path() + "/no-bus").c_str());
    XServer server{XServer::Kind::xvfb};
    XClient client;
    int argumentCount = 1;
    char name[6] = "tests";
    char* arguments[2] = {name, nullptr};
    QApplication application{argumentCount, arguments};
    VirtualDesktop desktop;
    QtOverlayWindows windows{desktop.runLoop, desktop.displays, nullptr, nullptr};
    std::unique_ptr<OverlayWindow> window;
    std::vector<std::int64_t> keys;

    static void SetUpTestSuite() { qputenv("QT_QPA_PLATFORM", "xcb"); }

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
    double opacity(xcb_window_t id) {
        return client.number(id, "_NET_WM_WINDOW_OPACITY") / double{0xFFFFFFFF};
    }
    /// Qt's event loop does not run here: what Qt does not send at once is not sent at all.
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

TEST_F(QtOverlayWindowsTest, EachStepOfAFadeReachesTheServerAtOnce) {
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

TEST_F(QtOverlayWindowsTest, KeyHeldFromBeforeIsDiscardedUntilItIsPressedAgain) {
    QtRunLoop runLoop;
    X11Connection connection(runLoop);
    X11KeyEvents keyEvents(connection, runLoop);
    QtOverlayWindows covers(runLoop, desktop.displays, &connection, &keyEvents.typing());
    const auto monitor = listen(covers);
    ASSERT_EQ(runToEnd({"xset", "-display", server.display(), "r", "rate", "50", "100"}), 0);
    connection.synchronize(); // it has selected events before the key is pressed
    client.hold(space);
    ASSERT_TRUE(serveUntil([&] { return keyEvents.typing().last().has_value(); }));
    show(covers);
    PressCounter counter; // its event filter runs before that of the windows
    application.installEventFilter(&counter);
    EXPECT_TRUE(serveUntil([&] { return counter.presses >= 10; }));
    EXPECT_EQ(keys, (std::vector<std::int64_t>{}));
    client.release(space);
    ASSERT_TRUE(serveUntil([&] { // a pause
        return runLoop.monotonicNow() - *keyEvents.typing().last() > Typing::pause;
    }));
    client.press(space);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier);
    QCoreApplication::sendEvent(QGuiApplication::focusWindow(), &press); // Qt gets the event first
    EXPECT_EQ(keys, (std::vector<std::int64_t>{spaceKeyCode}));
    window.reset();
}

TEST_F(QtOverlayWindowsTest, WithoutTypingDataOnlyRepeatsAreDiscarded) {
    const auto monitor = listen(windows);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier);
    QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, " ", true);
    QWindow other;
    QCoreApplication::sendEvent(&other, &repeat);
    EXPECT_EQ(keys.size(), 1U) << "without a cover, repeats get through as well";
    show(windows);
    auto* const cover = QGuiApplication::focusWindow();
    QCoreApplication::sendEvent(cover, &repeat);
    EXPECT_EQ(keys.size(), 1U);
    QCoreApplication::sendEvent(cover, &press);
    EXPECT_EQ(keys.size(), 2U);
}

} // namespace
} // namespace nocta
