#pragma once

#include <QVBoxLayout>
#include <QWidget>

namespace nocta {

/// Makes the column of a step, with its title and the text below the title.
QVBoxLayout* makeStepLayout(QWidget& step, const QString& title, const QString& text);

} // namespace nocta
