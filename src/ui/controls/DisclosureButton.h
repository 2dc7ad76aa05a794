#pragma once

#include <QAbstractButton>

namespace nocta {

/// A button that shows and hides its content.
class DisclosureButton final : public QAbstractButton {
public:
    /// `content` is initially hidden.
    DisclosureButton(const QString& text, QWidget& content);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void setOpen(bool isOpen);

    QWidget& content_;
    bool isOpen_ = false;
};

} // namespace nocta
