#pragma once

#include "ui/controls/Button.h"

namespace nocta {

/// A button for an action. A prominent button is for the action that most users want next.
class ActionButton final : public Button {
public:
    enum class Rank { normal, prominent };

    explicit ActionButton(const QString& text, Rank rank = Rank::normal);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Rank rank_;
};

} // namespace nocta
