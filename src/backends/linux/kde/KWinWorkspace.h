#pragma once

#include "backends/linux/SessionDisplays.h"
#include "base/CallbackList.h"
#include "platform/Workspace.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QString>
#include <QVariantList>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace nocta {

/// The applications on KDE's compositor, KWin. A script that runs inside KWin reports them over the
/// session bus whenever a window is activated, added or removed. The windows and the main screen
/// are those in the latest report. Without KWin, there are no reports. No call waits for KWin. If
/// KWin starts later or restarts, the script is loaded then.
class KWinWorkspace final : public Workspace {
public:
    /// Writes the script to `scriptFile`, because KWin loads scripts from files.
    KWinWorkspace(SessionDisplays& displays, std::filesystem::path scriptFile,
                  std::function<bool()> shouldReduceMotion);
    KWinWorkspace(const KWinWorkspace&) = delete;
    KWinWorkspace& operator=(const KWinWorkspace&) = delete;
    ~KWinWorkspace() override;

    Subscription observeDidActivateApplication(
        std::function<void(const std::optional<RunningApplication>&)> callback) override;
    std::optional<RunningApplication> frontmostApplication() override;
    std::optional<std::vector<WindowInfo>> copyWindowInfo() override;
    std::optional<Rect> mainScreenFrame() override;
    bool accessibilityDisplayShouldReduceMotion() override { return shouldReduceMotion_(); }

private:
    class Receiver;

    struct Report {
        std::optional<RunningApplication> frontmost;
        std::optional<Rect> screen; ///< of the active window
        std::optional<std::vector<WindowInfo>> windows;
    };

    static std::optional<Report> parse(const QString& text);

    void follow(const QDBusConnection& bus);
    void load(const QString& owner);
    void call(const char* method, const QVariantList& arguments, std::function<void()> answered);
    QDBusMessage message(const char* method, const QVariantList& arguments) const;
    void receive(const QDBusMessage& message);
    void take(Report report);

    SessionDisplays& displays_;
    std::filesystem::path scriptFile_;
    std::function<bool()> shouldReduceMotion_;
    Report report_;
    CallbackList<std::optional<RunningApplication>> activated_;
    QDBusConnection bus_{QString()};
    QString owner_; ///< the unique name of the running KWin; empty if there is none
    std::unique_ptr<Receiver> receiver_;
    QDBusServiceWatcher kwin_;
    Subscription sessionBus_;
};

} // namespace nocta
