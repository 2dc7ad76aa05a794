#pragma once

#include <QPushButton>
#include <QString>

namespace nocta {

/// How the two buttons of the break overlay look.
struct BreakButtonStyle {
    bool isPrimary = false;

    QSize size(const QPushButton& button) const;
    void paint(QPushButton& button) const;
};

/// A button of the break overlay. Enter presses it when it has the focus; Space belongs to the
/// overlay.
class BreakButton final : public QPushButton {
public:
    BreakButton(const QString& text, BreakButtonStyle style);

    QSize sizeHint() const override { return style_.size(*this); }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    BreakButtonStyle style_;
};

} // namespace nocta
