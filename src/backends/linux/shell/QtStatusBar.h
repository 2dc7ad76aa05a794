#pragma once

#include "backends/linux/shell/SystemTray.h"
#include "platform/StatusBar.h"

#include <QRect>
#include <QString>
#include <QSystemTrayIcon>

#include <optional>

namespace nocta {

/// The icon in the system tray: a StatusNotifierItem, or an XEmbed window if no panel hosts
/// StatusNotifierItems. The icon is shown as soon as there is a tray.
class QtStatusItem final : public QObject, public StatusItem {
public:
    explicit QtStatusItem(SystemTray& tray);

    void setImage(std::string_view symbolName, std::string_view accessibilityDescription) override;
    void setAction(std::function<void()> action) override;
    void setMenu(std::unique_ptr<View> menu) override;

    /// The icon's area on the screen; empty if the panel does not report it.
    QRect geometry() const { return icon_ ? icon_->geometry() : QRect(); }

protected:
    /// Redraws the icon when the desktop's colors change.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void makeIcon();
    void attachMenu();
    void draw();

    std::function<void()> action_;
    QString symbolName_;
    QString description_;
    std::unique_ptr<View> menu_;
    std::optional<QSystemTrayIcon> icon_;
};

class QtStatusBar final : public StatusBar {
public:
    explicit QtStatusBar(SystemTray& tray) : tray_(tray) {}

    bool isAvailable() const override { return tray_.isAvailable(); }
    std::unique_ptr<StatusItem> statusItem() override {
        return std::make_unique<QtStatusItem>(tray_);
    }

private:
    SystemTray& tray_;
};

} // namespace nocta
