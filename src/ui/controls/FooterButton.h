#pragma once

#include <QPushButton>

namespace nocta {

/// A plain button with a symbol above its small text.
class FooterButton final : public QPushButton {
public:
    FooterButton(const QString& symbol, const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString symbol_;
};

} // namespace nocta
