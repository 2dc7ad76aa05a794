#pragma once

#include <QCheckBox>

namespace nocta {

/// A toggle that shows a label and then a switch. A click anywhere on it toggles the switch.
class Switch final : public QCheckBox {
public:
    explicit Switch(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent* event) override;
};

} // namespace nocta
