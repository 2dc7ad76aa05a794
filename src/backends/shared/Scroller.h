#pragma once

#include <QEvent>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>

namespace nocta {

/// Gives its content all the room that it needs, on a screen that has it; else it scrolls. The
/// content of a window with a title bar, which owns it; the content belongs to someone else, and
/// goes first.
class Scroller final : public QScrollArea {
public:
    explicit Scroller(QWidget& content) {
        setFrameShape(QFrame::NoFrame);
        setFocusPolicy(Qt::NoFocus); // it follows what has the keyboard
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
    /// What a desktop may put around a window, in points.
    static constexpr QSize frameRoom{16, 48};
};

} // namespace nocta
