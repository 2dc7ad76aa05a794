#pragma once

#include "backends/linux/shell/LayerShell.h"
#include "platform/Views.h"
#include "support/EventLoop.h"
#include "support/Process.h"
#include "support/ShellCompositor.h"

#include <QApplication>
#include <QWidget>
#include <gtest/gtest.h>
#include <qpa/qplatformnativeinterface.h>

#include <set>
#include <string>
#include <wayland-client.h>

namespace nocta {

/// An opaque view, so that the alpha of a picture is that of its window.
class OpaqueView final : public View {
public:
    OpaqueView() { widget_.setAutoFillBackground(true); }
    void* nativeView() override { return &widget_; }

private:
    QWidget widget_;
};

/// Qt on a compositor of the test. Fails the test if Qt warns, or if the protocol was violated.
class QtOnLayers {
public:
    QtOnLayers() = default;
    QtOnLayers(const QtOnLayers&) = delete;
    QtOnLayers& operator=(const QtOnLayers&) = delete;
    ~QtOnLayers() {
        settle();
        EXPECT_EQ(compositor.violations(), std::vector<std::string>{});
    }

    ShellCompositor compositor;

private:
    TemporaryFolder home_;
    bool isPrepared_ = prepare(home_.path());
    int argumentCount_ = 1;
    char name_[6] = "tests";
    char* arguments_[2] = {name_, nullptr};

public:
    QApplication application{argumentCount_, arguments_};
    LayerShell layerShell;

    /// Returns when the compositor has read everything that Qt has sent.
    static void synchronize() {
        auto* const display = static_cast<wl_display*>(
            QGuiApplication::platformNativeInterface()->nativeResourceForIntegration("wl_display"));
        auto* const queue = wl_display_create_queue(display);
        EXPECT_GE(wl_display_roundtrip_queue(display, queue), 0);
        wl_event_queue_destroy(queue);
    }

    /// Runs Qt until every window in a layer has been painted in its newest size.
    void settle() {
        EXPECT_TRUE(serveUntil([&] {
            synchronize();
            return compositor.isSettled();
        }));
    }

    /// Runs Qt until the surfaces on screen are as wanted; fails the test if that never happens.
    void expectSoon(const std::function<bool(const std::vector<TestLayer>&)>& condition) {
        EXPECT_TRUE(serveUntil([&] {
            synchronize();
            return compositor.isSettled() && condition(compositor.mapped());
        }));
    }

private:
    static bool prepare(const std::string& home) {
        qputenv("QT_QPA_PLATFORM", "wayland");
        qputenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + home + "/no-bus").c_str());
        LayerShell::prepare();
        qInstallMessageHandler(
            [](QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
                EXPECT_TRUE(type == QtDebugMsg || type == QtInfoMsg) << message.toStdString();
            });
        return true;
    }
};

} // namespace nocta
