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

/// An opaque view. The alpha of its pixels is the alpha of its window.
class OpaqueView final : public View {
public:
    OpaqueView() { widget_.setAutoFillBackground(true); }
    void* nativeView() override { return &widget_; }

private:
    QWidget widget_;
};

/// Qt connected to a test compositor. Fails the test if Qt prints a warning or violates the
/// protocol.
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

    /// Returns once the compositor has read everything that Qt has sent.
    static void synchronize() {
        auto* const display = static_cast<wl_display*>(
            QGuiApplication::platformNativeInterface()->nativeResourceForIntegration("wl_display"));
        auto* const queue = wl_display_create_queue(display);
        EXPECT_GE(wl_display_roundtrip_queue(display, queue), 0);
        wl_event_queue_destroy(queue);
    }

    /// Runs Qt until every layer has been painted at its latest size.
    void settle() {
        EXPECT_TRUE(serveUntil([&] {
            synchronize();
            return compositor.isSettled();
        }));
    }

    /// Runs Qt until the mapped layers meet the condition. Fails the test if the condition is never
    /// met.
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
