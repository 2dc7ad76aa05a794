#include "ui/onboarding/StepLayout.h"

#include "ui/controls/Label.h"

namespace nocta {

namespace {
constexpr int sideMargin = 32; // points
constexpr int topMargin = 32;
constexpr int bottomMargin = 16;
constexpr int spacing = 8;
constexpr int contentSpacing = 16;
} // namespace

QVBoxLayout* makeStepLayout(QWidget& step, const QString& title, const QString& text) {
    auto* const column = new QVBoxLayout(&step);
    column->setContentsMargins(sideMargin, topMargin, sideMargin, bottomMargin);
    column->setSpacing(spacing);
    for (const auto& [line, style] :
         {std::pair(title, TextStyle::title), std::pair(text, TextStyle::paragraph)}) {
        auto* const label = new Label(line, style);
        label->setAlignment(Qt::AlignHCenter);
        column->addWidget(label);
    }
    column->addSpacing(contentSpacing);
    return column;
}

} // namespace nocta
