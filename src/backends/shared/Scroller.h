#pragma once

#include <QEvent>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>

namespace nocta {

/// Gives its content all the space that it needs, if the screen has it; otherwise it scrolls. It
/// fills a window with a title bar, which owns it. Someone else owns the content and destroys it
/// first.
class Scroller final : public QScrollArea {
public:
    explicit Scroller(QWidget& content) {
        setFrameShape(QFrame::NoFrame);
        setFocusPolicy(Qt::NoFocus); // it scrolls to the focused control instead
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
    /// What a desktop may draw around a window, in points.
    static constexpr QSize frameRoom{16, 48};
};

} // namespace nocta
