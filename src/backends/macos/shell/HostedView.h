#pragma once

#include "platform/Views.h"

#include <QEvent>
#include <QWidget>

#import <AppKit/AppKit.h>
#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

namespace nocta {

/// A view of the face for a native window or popover.
class HostedView : QObject {
public:
    /// As the desktop paints its windows, or whatever is behind.
    enum class Background { window, clear };

    HostedView(std::unique_ptr<View> content, Background background)
        : content_(std::move(content)), widget_(*static_cast<QWidget*>(content_->nativeView())) {
        widget_.setWindowFlags(Qt::SubWindow); // a native view alone, without a window of Qt's
        widget_.setAttribute(Qt::WA_TranslucentBackground, background == Background::clear);
        widget_.show();
        nativeView().autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
        widget_.installEventFilter(this);
    }

    ~HostedView() override { [nativeView() removeFromSuperview]; } // Qt would leave it there

    /// Qt owns it.
    NSView* nativeView() const {
        return (__bridge NSView*)reinterpret_cast<void*>(widget_.winId());
    }

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
    void makeFirstResponder() const { [nativeView().window makeFirstResponder:nativeView()]; }

protected:
    bool eventFilter(QObject* /*widget*/, QEvent* event) override {
        if (event->type() == QEvent::LayoutRequest && layoutRequested) {
            layoutRequested();
        }
        return false;
    }

private:
    std::unique_ptr<View> content_;
    QWidget& widget_;
};

} // namespace nocta
