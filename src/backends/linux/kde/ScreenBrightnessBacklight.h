#pragma once

#include "backends/linux/bus/BusSignal.h"
#include "base/Subscription.h"
#include "platform/Backlight.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace nocta {

/// The backlight of the built-in display through `org.kde.ScreenBrightness` on the session bus,
/// which KDE Plasma offers since 6.2. Plasma remembers the level, so a level that was written past
/// it would be lost when Plasma next writes its own.
///
/// The service gives its displays labels for people, not the names of connectors. So it is used
/// only while it has exactly one internal display and Nocta has exactly one built-in display. In
/// every other case, and while the service is missing or has not answered yet, `fallback` is used.
///
/// No call waits for the service. Only one message is on its way at a time, so an answer is never
/// older than the last level that was sent.
class ScreenBrightnessBacklight final : public Backlight {
public:
    ScreenBrightnessBacklight(Displays& displays, Backlight& fallback);
    ScreenBrightnessBacklight(const ScreenBrightnessBacklight&) = delete;
    ScreenBrightnessBacklight& operator=(const ScreenBrightnessBacklight&) = delete;

    Status getBrightness(DisplayId display, float& level) override;
    Status setBrightness(DisplayId display, float level) override;

private:
    /// An internal display of the service.
    struct Panel {
        QString path;
        int level = 0; ///< from 0, which is dim but not dark, to `maxLevel`
        int maxLevel = 0;
    };

    bool isOnlyBuiltIn(DisplayId display) const;
    void follow(QDBusConnection bus);
    void restart();
    void proceed();
    void write(float level);
    void readNames();
    void readDisplay(const QString& path);
    void finishReading();
    void send(const QDBusMessage& call, std::function<void(const QDBusMessage&)> answered);

    Displays& displays_;
    Backlight& fallback_;
    std::optional<Panel> panel_;       ///< the only internal display of the service
    std::optional<float> unsent_;      ///< the newest level, until it is sent to the service
    bool isWaiting_ = false;           ///< for an answer
    bool isStale_ = false;             ///< something has changed since the last question
    QStringList unread_;               ///< the names of the displays that are still to be read
    std::vector<Panel> internal_;      ///< the internal displays among those that have been read
    std::unique_ptr<QObject> answers_; ///< the context of the answers that count
    QDBusServiceWatcher service_;
    BusSignal changes_;
    Subscription sessionBus_;
};

} // namespace nocta
