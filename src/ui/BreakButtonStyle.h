#pragma once

#include "ui/controls/Button.h"

#include <QString>

namespace nocta {

/// How the two buttons of the break overlay look.
struct BreakButtonStyle {
    /// Around the button, for the ring that shows its focus; in points.
    static constexpr int focusRoom = 5;

    bool isPrimary = false;

    QSize size(const QPushButton& button) const;
    void paint(QPushButton& button) const;

private:
    void paintOpaque(QPainter& painter, const QPushButton& button) const;
};

/// A button of the break overlay. Space belongs to the overlay.
class BreakButton final : public Button {
public:
    BreakButton(const QString& text, BreakButtonStyle style);

    QSize sizeHint() const override { return style_.size(*this); }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    BreakButtonStyle style_;
};

} // namespace nocta
