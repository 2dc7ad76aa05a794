#pragma once

#include <QVBoxLayout>
#include <QWidget>

namespace nocta {

/// The column of a step, with its title and the text below that in it already.
QVBoxLayout* makeStepLayout(QWidget& step, const QString& title, const QString& text);

} // namespace nocta
