#pragma once

#include <QEvent>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>

namespace nocta {

/// Gives its content as much space as the content needs, or scrolls it if the screen is too small.
/// The scroller fills a window with a title bar and is owned by that window. The window does not
/// own the content, which is destroyed before the scroller.
class Scroller final : public QScrollArea {
public:
    explicit Scroller(QWidget& content) {
        setFrameShape(QFrame::NoFrame);
        setFocusPolicy(Qt::NoFocus); // the controls get focus; the area scrolls to the focused one
        setWidgetResizable(true);
        setWidget(&content);
        viewport()->setAutoFillBackground(false);
        content.setAutoFillBackground(false);
    }

    QSize sizeHint() const override {
        auto size = widget()->minimumSizeHint().expandedTo(widget()->minimumSize());
        if (widget()->hasHeightForWidth()) {
            size.setHeight(std::max(size.height(), widget()->heightForWidth(size.width())));
        }
        const auto room = screen()->availableGeometry().size() - frameRoom;
        const auto barWidth = verticalScrollBar()->sizeHint().width();
        if (size.height() > room.height()) {
            size.rwidth() += barWidth;
        }
        return size.boundedTo(room);
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::LayoutRequest) {
            updateGeometry();
        }
        return QScrollArea::eventFilter(watched, event);
    }

private:
    /// The space that a desktop may need for the frame of a window, in points.
    static constexpr QSize frameRoom{16, 48};
};

} // namespace nocta
