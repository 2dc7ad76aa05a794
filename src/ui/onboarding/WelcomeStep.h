#pragma once

#include <QWidget>

namespace nocta {

/// What Nocta does, in three lines.
class WelcomeStep final : public QWidget {
public:
    WelcomeStep();
};

/// A symbol, the name of a feature, and a line about it.
class FeatureRow final : public QWidget {
public:
    FeatureRow(const QString& icon, const QString& title, const QString& description);
};

} // namespace nocta
