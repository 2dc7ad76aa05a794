#pragma once

#include <QScrollArea>

namespace nocta {

/// Shows its content at the size that the content needs, and scrolls it if there is less space. A
/// view puts everything into scrollers that need not be visible all the time. If the view gets less
/// than its minimum size, its layout takes the missing space from the scroller, because the
/// scroller is the largest part.
class Scroller final : public QScrollArea {
public:
    /// Takes ownership of the content.
    explicit Scroller(QWidget* content);

    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return widget()->hasHeightForWidth(); }
    int heightForWidth(int width) const override { return widget()->heightForWidth(width); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace nocta
