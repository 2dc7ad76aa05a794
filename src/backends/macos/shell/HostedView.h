#pragma once

#include "backends/shared/Scroller.h"
#include "platform/Views.h"

#include <QEvent>
#include <QWidget>

#import <AppKit/AppKit.h>
#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

/// A view whose only subview fills it.
@interface NoctaContainerView : NSView
@end

namespace nocta {

/// A Qt view for a native window or popover. Qt's native view is inside a plain view. If Qt's view
/// were the content view of a window, Qt would take over that window and change its size and its
/// buttons.
class HostedView : QObject {
public:
    enum class Kind {
        window, ///< has a window background; scrolls if the screen is too small
        clear   ///< has a transparent background
    };

    /// `least` is the minimum size of the content, in points.
    HostedView(std::unique_ptr<View> content, NSSize least, Kind kind)
        : contentWidget_(*static_cast<QWidget*>(content->nativeView())),
          scroller_(kind == Kind::window ? std::make_unique<Scroller>(contentWidget_) : nullptr),
          widget_(scroller_ != nullptr ? *scroller_ : contentWidget_),
          content_(std::move(content)) {
        contentWidget_.setMinimumSize(contentWidget_.minimumSize().expandedTo(
            QSize(qRound(least.width), qRound(least.height))));
        contentWidget_.installEventFilter(this);
        widget_.setWindowFlags(Qt::SubWindow); // only a native view, without a Qt window
        widget_.setAttribute(Qt::WA_TranslucentBackground, kind == Kind::clear);
        const NSSize size = fittingSize();
        container_ =
            [[NoctaContainerView alloc] initWithFrame:NSMakeRect(0, 0, size.width, size.height)];
        [container_ addSubview:qtView()];
        widget_.show();
        qtView().frame = container_.bounds; // showing the widget may have moved it
    }

    /// The container stays with its window; Qt destroys only its own view.
    ~HostedView() override { [qtView() removeFromSuperview]; }

    NSView* view() const { return container_; }

    /// Called whenever the content may need a different size or its colors have changed.
    std::function<void()> contentChanged;

    /// The size that the content needs, in points.
    NSSize fittingSize() const {
        auto size = widget_.minimumSizeHint().expandedTo(widget_.minimumSize());
        if (widget_.hasHeightForWidth()) {
            size.setHeight(std::max(size.height(), widget_.heightForWidth(size.width())));
        }
        return NSMakeSize(size.width(), size.height());
    }

    /// Gives the content the keyboard focus in its window.
    void makeFirstResponder() const { [container_.window makeFirstResponder:qtView()]; }

protected:
    bool eventFilter(QObject* /*widget*/, QEvent* event) override {
        const auto isChange =
            event->type() == QEvent::LayoutRequest || event->type() == QEvent::PaletteChange;
        if (isChange && contentChanged) {
            contentChanged();
        }
        return false;
    }

private:
    /// Qt owns this view.
    NSView* qtView() const { return (__bridge NSView*)reinterpret_cast<void*>(widget_.winId()); }

    QWidget& contentWidget_;
    std::unique_ptr<Scroller> scroller_;
    QWidget& widget_; ///< the outermost widget
    NoctaContainerView* container_ = nil;
    std::unique_ptr<View> content_; // destroyed before its scroller
};

} // namespace nocta
