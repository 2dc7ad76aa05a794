#pragma once

#include "ui/controls/Button.h"

#include <QString>

namespace nocta {

/// The appearance of the two buttons on the break overlay.
struct BreakButtonStyle {
    /// Space around the button for its focus ring, in points.
    static constexpr int focusRoom = 5;

    bool isPrimary = false;

    QSize size(const QPushButton& button) const;
    void paint(QPushButton& button) const;

private:
    void paintOpaque(QPainter& painter, const QPushButton& button) const;
};

/// A button on the break overlay. The overlay, not the button, handles the space key.
class BreakButton final : public Button {
public:
    BreakButton(const QString& text, BreakButtonStyle style);

    QSize sizeHint() const override { return style_.size(*this); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    BreakButtonStyle style_;
};

} // namespace nocta
