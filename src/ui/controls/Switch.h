#pragma once

#include <QCheckBox>

namespace nocta {

/// A toggle in the shape of a switch after its text. A click anywhere on it toggles it.
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
