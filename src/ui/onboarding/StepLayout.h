#pragma once

#include <QVBoxLayout>
#include <QWidget>

namespace nocta {

/// Makes the layout of a step: a column that begins with the title and the text.
QVBoxLayout* makeStepLayout(QWidget& step, const QString& title, const QString& text);

} // namespace nocta
