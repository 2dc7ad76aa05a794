#pragma once

#include "base/Published.h"

#include <functional>
#include <optional>
#include <string>
#include <variant>

namespace nocta {

// The stages that an updater shows to the user. Texts are plain UTF-8.

struct UpdatePermissionRequest {}; ///< whether it may check automatically
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
    std::string version{}; ///< for people; empty if the check failed
};

/// monostate while there is nothing to show.
using UpdateStage =
    std::variant<std::monostate, UpdatePermissionRequest, UpdateCheckInProgress, UpdateNotFound,
                 UpdateFound, UpdateDownload, UpdateHandedOver, UpdaterError>;

/// Keeps the program up to date. Stands for SPUStandardUpdaterController and SPUUpdater, which show
/// windows of their own: with them `stage` is always monostate.
class Updater {
public:
    enum class Availability {
        available,
        noFeed,        ///< this build has no address for updates
        packageManager ///< updates come with those of the system
    };
    /// `error` describes why the cycle failed, unless the updater has already logged it.
    using DidFinishUpdateCycle = std::function<void(const std::optional<std::string>& error)>;

    Published<bool> canCheckForUpdates{false};
    /// Written again, with an equal value, to bring it to the front.
    Published<UpdateStage> stage;
    Published<double> downloadProgress{0.0}; ///< 0.0–1.0

    virtual ~Updater() = default;

    virtual Availability availability() const = 0;

    /// Called once. Returns a description of the error if updates cannot be checked. Stands for
    /// startUpdater: and updater:didFinishUpdateCycleForUpdateCheck:error:.
    virtual std::optional<std::string> startUpdater(DidFinishUpdateCycle didFinishUpdateCycle) = 0;

    // These are stored even if the updater cannot check.
    virtual bool automaticallyChecksForUpdates() const = 0;
    virtual void setAutomaticallyChecksForUpdates(bool checks) = 0;
    virtual bool automaticallyDownloadsUpdates() const = 0;
    virtual void setAutomaticallyDownloadsUpdates(bool downloads) = 0;

    /// A check that the user asked for: shows every result, even that there is no update.
    virtual void checkForUpdates() = 0;

    // The user's answers to the current stage. An answer that does not fit the stage does nothing.

    // For UpdateFound.
    virtual void install() = 0;
    virtual void skip() = 0;
    /// Not now, or done reading. Cancels a check or a download; denies a permission request.
    virtual void dismiss() = 0;
};

} // namespace nocta
