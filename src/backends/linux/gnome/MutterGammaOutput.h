#pragma once

#include "backends/linux/bus/BusSignal.h"
#include "backends/linux/gnome/MutterDisplays.h"
#include "backends/linux/gnome/RampKeeperProtocol.h"
#include "backends/linux/gnome/RampNotes.h"
#include "backends/linux/process/HelperProcess.h"
#include "base/Timer.h"
#include "platform/GammaOutput.h"

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QObject>

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nocta {

/// The gamma ramps of a GNOME session, through its compositor. Tables are laid over the ramps that
/// were there before, which a helper process, `nocta-ramps`, notes before the first write. The
/// helper also restores them, because the compositor keeps our ramps when this process dies.
///
/// At most one write to a display is under way; only the newest of the tables that come meanwhile
/// is sent then. Tables are sent again when something else may have written: GNOME's night light,
/// a color profile, or a change of the monitors.
class MutterGammaOutput final : public GammaOutput {
public:
    /// The helper keeps its notes in the file `notes`. Waits for the compositor's answer, but not
    /// longer than half a second.
    MutterGammaOutput(const QDBusConnection& bus, MutterDisplays& displays, RunLoop& runLoop,
                      std::filesystem::path notes);
    MutterGammaOutput(const MutterGammaOutput&) = delete;
    MutterGammaOutput& operator=(const MutterGammaOutput&) = delete;
    ~MutterGammaOutput() override;

    /// Whether the main display has a ramp. Displays without hardware, such as remote ones, do not.
    bool isAvailable() const override { return isAvailable_; }
    Status setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                     std::span<const float> green,
                                     std::span<const float> blue) override;
    void displayRestoreColorSyncSettings() override;

    /// Whether tables are being sent or wait to be sent.
    bool isBusy() const;

    /// Sends the last tables again, now and shortly after the last such call.
    void sendAgain();

private:
    struct Output {
        TransferTables tables;  ///< the newest
        bool isDue = false;     ///< `tables` have not been sent yet
        bool hasFailed = false; ///< the last write; it is repeated once
        std::optional<QDBusPendingCall> write = std::nullopt; ///< under way
    };

    void probe();
    bool isStarting() const { return helper_.isRunning() && unanswered_ > 0; }
    bool startHelper(RampKeeperCommand command);
    bool sendCommand(RampKeeperCommand command);
    void receive();
    void complain(const std::string& problem);
    void advanceAll();
    void advance(DisplayId display, Output& output);
    void finishWrite(DisplayId display, const QDBusMessage& answer);
    void followMonitors();
    void sendAllAgain();

    QDBusConnection bus_;
    MutterDisplays& displays_;
    RunLoop& runLoop_;
    std::filesystem::path notes_;
    bool isAvailable_ = false;
    int unanswered_ = 0; ///< commands
    int replacements_ = 0;
    bool hasComplained_ = false;
    std::map<std::uint32_t, GammaRamp> factory_; ///< by CRTC
    std::map<DisplayId, Output> outputs_;
    std::unique_ptr<QObject> answers_; ///< the context of calls whose answers still matter
    HelperProcess helper_;
    Timer later_;
    Subscription refreshed_;
    BusSignal mayHaveBeenOverwritten_{[this] { sendAgain(); }};
};

} // namespace nocta
