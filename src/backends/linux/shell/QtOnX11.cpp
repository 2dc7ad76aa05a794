#include "backends/linux/shell/QtOnX11.h"

#include "backends/linux/x11/XcbReply.h"

#include <QGuiApplication>
#include <QTimer>
#include <QWindow>
#include <QtGui/qguiapplication_platform.h>
#include <xcb/xcb.h>

#include <cmath>
#include <cstdint>
#include <utility>

namespace nocta {

namespace {

xcb_connection_t* qtConnection() {
    const auto* const application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    const auto* const onX11 =
        application == nullptr ? nullptr
                               : application->nativeInterface<QNativeInterface::QX11Application>();
    return onX11 == nullptr ? nullptr : onX11->connection();
}

} // namespace

void flushQt() {
    if (auto* const connection = qtConnection()) {
        xcb_flush(connection);
    }
}

void afterEventsOfQt(const QObject& context, std::function<void()> action) {
    auto* const connection = qtConnection();
    if (connection == nullptr) {
        action();
        return;
    }
    // When this reply arrives, Qt has received all earlier events. After two turns of the event
    // loop, Qt has also handled them.
    const XcbReply<xcb_get_input_focus_reply_t> received(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    QTimer::singleShot(0, &context, [&context, action = std::move(action)] {
        QTimer::singleShot(0, &context, action);
    });
}

void placeByPixels(const QWindow& window, const Rect& pixels, const QColor& color) {
    auto* const connection = qtConnection();
    if (connection == nullptr) {
        return;
    }
    // Uses Qt's own connection, so that this takes effect after Qt's placement.
    const auto id = static_cast<xcb_window_t>(window.winId());
    const auto number = [](double value) {
        return static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(value)));
    };
    const std::uint32_t background = qPremultiply(color.rgba());
    const std::uint32_t place[] = {number(pixels.x), number(pixels.y), number(pixels.width),
                                   number(pixels.height)};
    xcb_change_window_attributes(connection, id, XCB_CW_BACK_PIXEL, &background);
    xcb_configure_window(connection, id,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         place);
    xcb_flush(connection);
}

} // namespace nocta
