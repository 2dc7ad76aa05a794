#include "ui/controls/Button.h"

#include <QKeyEvent>

namespace nocta {

void Button::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        click();
    } else {
        QPushButton::keyPressEvent(event);
    }
}

} // namespace nocta
