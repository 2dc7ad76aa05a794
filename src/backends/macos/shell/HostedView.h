#pragma once

#include "backends/shared/FittingSize.h"
#include "platform/Views.h"

#include <QEvent>
#include <QScreen>
#include <QWidget>

#import <AppKit/AppKit.h>
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
        window, ///< has a window background; no larger than the screen
        clear   ///< has a transparent background
    };

    /// `least` is the minimum size of the content, in points.
    HostedView(std::unique_ptr<View> content, NSSize least, Kind kind)
        : widget_(*static_cast<QWidget*>(content->nativeView())), content_(std::move(content)),
          least_(qRound(least.width), qRound(least.height)), kind_(kind) {
        widget_.installEventFilter(this);
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
        const auto size = nocta::fittingSize(
            widget_, least_,
            kind_ == Kind::window ? widget_.screen()->availableSize() : unlimitedSpace);
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

    QWidget& widget_;
    std::unique_ptr<View> content_;
    QSize least_;
    Kind kind_;
    NoctaContainerView* container_ = nil;
};

} // namespace nocta
