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

/// Sets the backlight of the built-in display through `org.kde.ScreenBrightness` on the session
/// bus, which KDE Plasma has offered since version 6.2. Plasma remembers the level, so a level that
/// was written without Plasma would be lost the next time Plasma writes its own.
///
/// The service identifies its displays by human-readable labels, not by connector names. So the
/// service is used only while it has exactly one internal display and Nocta has exactly one
/// built-in display. In all other cases, and while the service is missing or has not answered yet,
/// `fallback` is used.
///
/// No call waits for the service. Only one message is pending at a time, so an answer is never
/// older than the last level that was sent.
class ScreenBrightnessBacklight final : public Backlight {
public:
    ScreenBrightnessBacklight(Displays& displays, Backlight& fallback);
    ScreenBrightnessBacklight(const ScreenBrightnessBacklight&) = delete;
    ScreenBrightnessBacklight& operator=(const ScreenBrightnessBacklight&) = delete;

    Status getBrightness(DisplayId display, float& level) override;
    Status setBrightness(DisplayId display, float level) override;

private:
    /// An internal display, as reported by the service.
    struct Panel {
        QString path;
        int level = 0; ///< from 0 (dim, but not dark) to `maxLevel`
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
    bool isWaiting_ = false;           ///< an answer is pending
    bool isStale_ = false;             ///< the displays have changed since the last reading
    QStringList unread_;               ///< the names of the displays that have not been read yet
    std::vector<Panel> internal_;      ///< the internal displays among those that have been read
    std::unique_ptr<QObject> answers_; ///< the context of the callbacks; replaced on restart
    QDBusServiceWatcher service_;
    BusSignal changes_;
    Subscription sessionBus_;
};

} // namespace nocta
