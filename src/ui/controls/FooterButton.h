#pragma once

#include "ui/controls/Button.h"

namespace nocta {

/// A flat button with a symbol above a small label.
class FooterButton final : public Button {
public:
    FooterButton(QString symbol, const QString& text);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString symbol_;
};

} // namespace nocta
