#include "tour/LiveDesktop.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPainter>

#include <chrono>

namespace nocta {

namespace {
using namespace std::chrono_literals;

// The displays are side by side; their bounds are in points.
constexpr Rect builtInBounds{0, 0, 1024, 680};
constexpr Rect externalBounds{1024, 0, 960, 600};
constexpr int gap = 24; ///< between the displays of a picture
constexpr QRgb room = 0xFF202024;
} // namespace

LiveDesktop::LiveDesktop() {
    desktop.displays.plug(
        {.id = builtIn, .isBuiltIn = true, .isMain = true, .bounds = builtInBounds});
    desktop.displays.plug({.id = external, .bounds = externalBounds});
    desktop.workspace.frontmost = RunningApplication{"com.example.notes", "Notes"};
}

void LiveDesktop::launch() {
    instances_.emplace(desktop.ports);
    views_.emplace(*instances_);
    program_.emplace(*instances_, *views_);
    desktop.application.launch(*program_);
    scene_.emplace(desktop);
    desktop.runLoop.advance(0s);
}

QImage LiveDesktop::picture() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest); // no event loop is running
    const auto& displays = desktop.displays.all();
    QSize size(0, 0);
    for (const auto& display : displays) {
        size = size.expandedTo(QSize(static_cast<int>(display.bounds.x + display.bounds.width),
                                     static_cast<int>(display.bounds.height)));
    }
    QImage picture(size + QSize(gap * (static_cast<int>(displays.size()) - 1), 0),
                   QImage::Format_RGB32);
    picture.fill(room);
    QPainter painter(&picture);
    int offset = 0;
    for (const auto& display : displays) { // from left to right
        painter.drawImage(QPointF(display.bounds.x + offset, display.bounds.y),
                          scene_->picture(display.id));
        offset += gap;
    }
    return picture;
}

void LiveDesktop::quit() {
    desktop.application.terminate();
    program_.reset();
}

} // namespace nocta
