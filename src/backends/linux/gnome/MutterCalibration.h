#pragma once

#include "backends/linux/gamma/GammaRamp.h"
#include "backends/linux/gnome/MutterDisplays.h"
#include "base/Timer.h"
#include "platform/GammaOutput.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>

namespace nocta {

/// Sets the gamma ramps of a GNOME session through the calibration sessions that its compositor has
/// offered since GNOME 49.
///
/// A calibration session belongs to one monitor and one program. When the session starts, the
/// compositor loads the ramp of the monitor's color profile; the tables are laid over that ramp.
/// During the session, the night light does not write ramps. When the session is stopped or this
/// process dies, the compositor restores the monitor's ramp, so no helper is needed.
///
/// A session starts when tables are first set for its monitor. If the session fails, it is
/// restarted a few times, because the compositor takes a moment to find the profile of a new
/// monitor, and ends the session when it rebuilds its list of monitors.
///
/// At most one call is pending for each monitor. Of the tables that are set in the meantime, only
/// the newest are sent afterward.
class MutterCalibration final : public GammaOutput {
public:
    /// Waits for the compositor's answers, but no longer than one second.
    MutterCalibration(const QDBusConnection& bus, MutterDisplays& displays, RunLoop& runLoop);
    MutterCalibration(const MutterCalibration&) = delete;
    MutterCalibration& operator=(const MutterCalibration&) = delete;
    ~MutterCalibration() override;

    /// Whether the main display can have a session.
    bool isAvailable() const override { return isAvailable_; }
    Status setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                     std::span<const float> green,
                                     std::span<const float> blue) override;
    void displayRestoreColorSyncSettings() override;

    /// Whether tables are being sent or are waiting to be sent.
    bool isBusy() const;

    /// Resends the latest tables, which may be lost while the machine sleeps.
    void sendAgain();

private:
    struct Monitor {
        DisplayId display;
        TransferTables tables{};            ///< the newest
        bool isDue = false;                 ///< `tables` have not been sent yet
        bool isBusy = false;                ///< a call is pending
        int failures = 0;                   ///< since the last successful write
        QString session{};                  ///< an object path; empty before the session starts
        std::uint32_t size = 0;             ///< entries for each channel
        std::optional<GammaRamp> factory{}; ///< empty channels if there is no calibration
        Timer pause{};
    };
    using MonitorPointer = std::shared_ptr<Monitor>;
    /// Stores the contents of an answer. Returns false if they cannot be used.
    using Step = bool (*)(Monitor& monitor, const QDBusMessage& answer);

    void probe();
    void ask(const MonitorPointer& monitor, const QDBusMessage& question, Step take);
    void advance(const MonitorPointer& monitor);
    void write(const MonitorPointer& monitor);
    void fail(const MonitorPointer& monitor);
    void stop(const QString& session, QDBus::CallMode mode = QDBus::NoBlock);
    void followMonitors();

    QDBusConnection bus_;
    MutterDisplays& displays_;
    RunLoop& runLoop_;
    bool isAvailable_ = false;
    std::map<DisplayId, MonitorPointer> monitors_;
    Subscription refreshed_;
    QObject answers_; ///< the context of the callbacks
};

} // namespace nocta
