#pragma once

#include <QSize>
#include <QStyle>
#include <QWidget>

#include <algorithm>

namespace nocta {

/// A screen on which every window has space.
inline constexpr QSize unlimitedSpace(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);

/// The size for a view in a window with a title bar: what the view needs and at least `least`, but
/// no more than fits on a screen with this much space. In a smaller window, the view scrolls and
/// needs space for the scroll bar.
inline QSize fittingSize(const QWidget& view, const QSize& least, const QSize& available) {
    constexpr QSize frame(16, 48); // the space that a desktop may need for the window's frame
    const auto room = available - frame;
    auto size = view.minimumSizeHint().expandedTo(view.minimumSize());
    size.setWidth(std::max(size.width(), least.width()));
    if (view.hasHeightForWidth()) {
        size.setHeight(std::max(size.height(), view.heightForWidth(size.width())));
    }
    if (size.height() > room.height()) {
        size.rwidth() += view.style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    }
    return size.expandedTo(least).boundedTo(room);
}

} // namespace nocta
