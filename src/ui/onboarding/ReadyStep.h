#pragma once

#include "system/LaunchAtLoginService.h"

#include <QWidget>

namespace nocta {

/// The last step, which offers launch at login.
class ReadyStep final : public QWidget {
public:
    explicit ReadyStep(LaunchAtLoginService& launchService);
};

} // namespace nocta
