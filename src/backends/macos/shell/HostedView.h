#pragma once

#include "platform/Views.h"

#include <QEvent>
#include <QWidget>
#include <QWindow>

#import <AppKit/AppKit.h>
#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

namespace nocta {

/// A view of the face inside a native one, which it fills. As Qt embeds a window of its own in a
/// foreign one: the native view is given a QWindow, and the widget's becomes its child.
class HostedView : QObject {
public:
    /// As the desktop paints its windows, or whatever is behind.
    enum class Background { window, clear };

    HostedView(std::unique_ptr<View> content, Background background)
        : parent_(QWindow::fromWinId(reinterpret_cast<WId>((__bridge void*)native_))),
          content_(std::move(content)), widget_(*static_cast<QWidget*>(content_->nativeView())) {
        // Asked for before the widget has a window, which cannot become translucent later.
        widget_.setAttribute(Qt::WA_TranslucentBackground, background == Background::clear);
        widget_.winId();
        widget_.windowHandle()->setParent(parent_.get());
        widget_.show();
        qtView().frame = native_.bounds;
        qtView().autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
        widget_.installEventFilter(this);
    }

    NSView* nativeView() const { return native_; }

    /// Called whenever the content may need another size.
    std::function<void()> layoutRequested;

    /// What the content needs, at least `least`; in points.
    NSSize fittingSize(NSSize least) const {
        auto size = widget_.minimumSizeHint()
                        .expandedTo(widget_.minimumSize())
                        .expandedTo(QSize(qRound(least.width), qRound(least.height)));
        if (widget_.hasHeightForWidth()) {
            size.setHeight(std::max(size.height(), widget_.heightForWidth(size.width())));
        }
        return NSMakeSize(size.width(), size.height());
    }

    /// Gives the content the keyboard of the window that it is in.
    void makeFirstResponder() const { [native_.window makeFirstResponder:qtView()]; }

protected:
    bool eventFilter(QObject* /*widget*/, QEvent* event) override {
        if (event->type() == QEvent::LayoutRequest && layoutRequested) {
            layoutRequested();
        }
        return false;
    }

private:
    /// Qt owns it.
    NSView* qtView() const { return (__bridge NSView*)reinterpret_cast<void*>(widget_.winId()); }

    NSView* native_ = [[NSView alloc] init];
    std::unique_ptr<QWindow> parent_; // what Qt has for the native view
    std::unique_ptr<View> content_;   // goes before what it is in
    QWidget& widget_;
};

} // namespace nocta
