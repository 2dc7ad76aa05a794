#pragma once

#include "base/RunLoop.h"
#include "base/Timer.h"
#include "platform/StatusBar.h"

#include <QRect>
#include <QSystemTrayIcon>

namespace nocta {

/// The icon in the system tray: a StatusNotifierItem, or an XEmbed window where no panel hosts
/// those. On a desktop that shows no tray at all it presses itself once, so that the program does
/// not start unseen; a panel that is still starting is given a moment first.
class QtStatusItem final : public StatusItem {
public:
    explicit QtStatusItem(RunLoop& runLoop);

    void setImage(std::string_view symbolName, std::string_view accessibilityDescription) override;
    void setAction(std::function<void()> action) override;

    /// On screen; empty on panels that do not tell.
    QRect geometry() const { return icon_.geometry(); }

private:
    std::function<void()> action_;
    QSystemTrayIcon icon_;
    Timer trayTimeout_;
};

class QtStatusBar final : public StatusBar {
public:
    explicit QtStatusBar(RunLoop& runLoop) : runLoop_(runLoop) {}

    std::unique_ptr<StatusItem> statusItem() override {
        return std::make_unique<QtStatusItem>(runLoop_);
    }

private:
    RunLoop& runLoop_;
};

} // namespace nocta
