#pragma once

#include "system/LaunchAtLoginService.h"

#include <QWidget>

namespace nocta {

/// The end, and the last choice.
class ReadyStep final : public QWidget {
public:
    explicit ReadyStep(LaunchAtLoginService& launchService);
};

} // namespace nocta
