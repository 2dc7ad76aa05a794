#pragma once

#include <QApplication>
#include <QEvent>

namespace nocta {

/// An event filter that counts the key presses for windows of this program. It does not see presses
/// that a filter installed later has swallowed.
class PressCounter final : public QObject {
public:
    explicit PressCounter(QApplication& application) { application.installEventFilter(this); }

    int presses = 0;

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override {
        presses += event->type() == QEvent::KeyPress && receiver->isWindowType() ? 1 : 0;
        return false;
    }
};

} // namespace nocta
