#pragma once

#include <QPushButton>

namespace nocta {

/// A push button that the Enter key also presses, in any window.
class Button : public QPushButton {
public:
    using QPushButton::QPushButton;

    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace nocta
