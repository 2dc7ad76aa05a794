#pragma once

#include "base/Published.h"

#include <functional>
#include <optional>
#include <string>
#include <variant>

namespace nocta {

// The stages that an updater shows to the user. Strings are plain UTF-8.

struct UpdatePermissionRequest {}; ///< asks whether to check automatically
struct UpdateCheckInProgress {};
struct UpdateNotFound {};
struct UpdateFound {
    std::string version; ///< as shown to the user
    std::string releaseNotes{};
};
struct UpdateDownload {
    std::string version; ///< as shown to the user
};
struct UpdateHandedOver { ///< to the installer
    std::string version;  ///< as shown to the user
};
struct UpdaterError {
    std::string description;
    std::string version{}; ///< as shown to the user; empty if the check failed
};

/// `std::monostate` while there is nothing to show.
using UpdateStage =
    std::variant<std::monostate, UpdatePermissionRequest, UpdateCheckInProgress, UpdateNotFound,
                 UpdateFound, UpdateDownload, UpdateHandedOver, UpdaterError>;

/// Keeps the program up to date. Corresponds to SPUStandardUpdaterController and SPUUpdater on
/// macOS, which show their own windows; there, `stage` is always `std::monostate`.
class Updater {
public:
    enum class Availability {
        available,
        noFeed,        ///< this build has no feed URL
        packageManager ///< the system's package manager updates the program
    };
    /// `error` describes why the cycle failed, unless the updater has already logged the error.
    using DidFinishUpdateCycle = std::function<void(const std::optional<std::string>& error)>;

    Published<bool> canCheckForUpdates{false};
    /// The updater writes an equal value again to bring the stage's window to the front.
    Published<UpdateStage> stage;
    Published<double> downloadProgress{0.0}; ///< 0.0–1.0

    virtual ~Updater() = default;

    virtual Availability availability() const = 0;

    /// Call this function once. If the updater cannot check for updates, returns a description of
    /// the error. Corresponds to startUpdater: and
    /// updater:didFinishUpdateCycleForUpdateCheck:error: on macOS.
    virtual std::optional<std::string> startUpdater(DidFinishUpdateCycle didFinishUpdateCycle) = 0;

    // These settings are stored even if the updater cannot check for updates.
    virtual bool automaticallyChecksForUpdates() const = 0;
    virtual void setAutomaticallyChecksForUpdates(bool checks) = 0;
    virtual bool automaticallyDownloadsUpdates() const = 0;
    virtual void setAutomaticallyDownloadsUpdates(bool downloads) = 0;

    /// Starts a check that the user asked for. It shows every result, even if there is no update.
    virtual void checkForUpdates() = 0;

    // The user's answers to the current stage. An answer that does not fit the stage is ignored.

    // These two answers are for `UpdateFound`.
    virtual void install() = 0;
    virtual void skip() = 0;
    /// The user answered "not now" or has read the message. Cancels a check or a download; denies a
    /// permission request.
    virtual void dismiss() = 0;
};

} // namespace nocta
