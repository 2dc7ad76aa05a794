#include "ui/controls/Scroller.h"

#include <QApplication>
#include <QEvent>

namespace nocta {

Scroller::Scroller(QWidget* content) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus); // the controls get focus
    setWidgetResizable(true);
    setWidget(content);
    viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    // Qt itself follows the focus only from one control in the area to another.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget* /*before*/, QWidget* now) {
        if (now != nullptr && widget()->isAncestorOf(now)) {
            ensureWidgetVisible(now);
        }
    });
}

QSize Scroller::minimumSizeHint() const {
    return widget()->minimumSizeHint().expandedTo(widget()->minimumSize());
}

bool Scroller::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) {
        updateGeometry();
    }
    return QScrollArea::eventFilter(watched, event);
}

} // namespace nocta
