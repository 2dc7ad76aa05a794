#pragma once

#include <QWidget>

namespace nocta {

/// Introduces Nocta's features in three rows.
class WelcomeStep final : public QWidget {
public:
    WelcomeStep();
};

/// A row with a symbol, the name of a feature, and a line about the feature.
class FeatureRow final : public QWidget {
public:
    FeatureRow(const QString& icon, const QString& title, const QString& description);
};

} // namespace nocta
