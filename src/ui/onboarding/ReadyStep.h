#pragma once

#include "app/SharedInstances.h"

#include <QWidget>

namespace nocta {

/// The last step, which offers launch at login. If there is no status bar for the icon, a line says
/// how to come back.
class ReadyStep final : public QWidget {
public:
    explicit ReadyStep(SharedInstances& instances);

protected:
    void showEvent(QShowEvent* event) override;

private:
    StatusBar& statusBar_;
    QWidget* comeBackNote_;
};

} // namespace nocta
