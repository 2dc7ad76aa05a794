#pragma once

#include "base/Published.h"

#include <functional>
#include <optional>
#include <string>
#include <variant>

namespace nocta {

// What an updater has to show to the user. Texts are UTF-8 and plain.

struct UpdatePermissionRequest {}; ///< whether it may check by itself
struct UpdateCheckInProgress {};
struct UpdateNotFound {};
struct UpdateFound {
    std::string version; ///< for people
    std::string releaseNotes{};
};
struct UpdateDownload {
    std::string version; ///< for people
};
struct UpdateHandedOver { ///< to the installer
    std::string version;  ///< for people
};
struct UpdaterError {
    std::string description;
    std::string version{}; ///< for people; nothing where the check failed
};

/// Nothing while there is nothing to show.
using UpdateStage =
    std::variant<std::monostate, UpdatePermissionRequest, UpdateCheckInProgress, UpdateNotFound,
                 UpdateFound, UpdateDownload, UpdateHandedOver, UpdaterError>;

/// Keeps the program up to date. Stands for SPUStandardUpdaterController and SPUUpdater, which have
/// windows of their own: on that desktop `stage` is always nothing.
class Updater {
public:
    enum class Availability {
        available,
        noFeed,        ///< this build knows nowhere to look
        packageManager ///< updates come with those of the system
    };
    /// The error's description where the cycle failed, unless the updater has logged it already.
    using DidFinishUpdateCycle = std::function<void(const std::optional<std::string>& error)>;

    Published<bool> canCheckForUpdates{false};
    /// Written anew when it is to be brought to the front.
    Published<UpdateStage> stage;
    Published<double> downloadProgress{0.0}; ///< 0.0–1.0

    virtual ~Updater() = default;

    virtual Availability availability() const = 0;

    /// Called once. Returns the error's description where updates cannot be looked for. Stands for
    /// startUpdater: and updater:didFinishUpdateCycleForUpdateCheck:error:.
    virtual std::optional<std::string> startUpdater(DidFinishUpdateCycle didFinishUpdateCycle) = 0;

    // They are remembered wherever the updater can check or not.
    virtual bool automaticallyChecksForUpdates() const = 0;
    virtual void setAutomaticallyChecksForUpdates(bool checks) = 0;
    virtual bool automaticallyDownloadsUpdates() const = 0;
    virtual void setAutomaticallyDownloadsUpdates(bool downloads) = 0;

    /// As the user wishes: whatever comes of it is shown.
    virtual void checkForUpdates() = 0;

    // The user's answers to the stage; one that does not fit it does nothing.

    /// Of what was found.
    virtual void install() = 0;
    virtual void skip() = 0;
    /// Not now, or seen; ends what is in progress. Of the permission: no.
    virtual void dismiss() = 0;
};

} // namespace nocta
