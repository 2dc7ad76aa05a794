#include "updates/UpdateService.h"

#include "updates/VersionOrder.h"

#include <chrono>
#include <compare>
#include <utility>
#include <variant>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr Duration checkInterval = 24h;
constexpr Duration lookInterval = 1h; // on the wall clock, which continues during sleep

} // namespace

UpdateService::UpdateService(RunLoop& runLoop, UpdateSource& source, DefaultsStore& store,
                             const Bundle& bundle, UpdateSystem system)
    : runLoop_(runLoop), source_(source), bundle_(bundle), system_(std::move(system)),
      record_(store), begin_(runLoop, [this] { begin(); }) {}

Updater::Availability UpdateService::availability() const {
    if (bundle_.isPackageManaged) {
        return Availability::packageManager;
    }
    return bundle_.feedUrl.empty() || bundle_.publicEdKey.empty() ? Availability::noFeed
                                                                  : Availability::available;
}

std::optional<std::string> UpdateService::startUpdater(DidFinishUpdateCycle didFinishUpdateCycle) {
    if (availability() != Availability::available) {
        return "There is no feed to check";
    }
    didFinishUpdateCycle_ = std::move(didFinishUpdateCycle);
    canCheckForUpdates.set(true);
    begin_.request();
    return std::nullopt;
}

/// Asks the user for permission on the second launch, to keep the first launch simple.
void UpdateService::begin() {
    source_.removePackages(checkInterval); // an installer may still read a recent one
    if (record_.checksAutomatically()) {
        keepChecking();
    } else if (!record_.hasLaunchedBefore()) {
        record_.setHasLaunchedBefore();
    } else if (!isShown()) {
        stage.set(UpdatePermissionRequest{});
    }
}

bool UpdateService::automaticallyChecksForUpdates() const {
    return record_.checksAutomatically().value_or(false);
}

void UpdateService::setAutomaticallyChecksForUpdates(bool checks) {
    record_.setChecksAutomatically(checks);
    if (std::holds_alternative<UpdatePermissionRequest>(stage.get())) {
        stage.set({});
    }
    keepChecking();
}

bool UpdateService::automaticallyDownloadsUpdates() const {
    return record_.downloadsAutomatically();
}

void UpdateService::setAutomaticallyDownloadsUpdates(bool downloads) {
    record_.setDownloadsAutomatically(downloads);
}

void UpdateService::keepChecking() {
    if (canCheckForUpdates.get() && automaticallyChecksForUpdates()) {
        timer_.start(runLoop_, lookInterval, Repeat::yes, [this] { checkIfDue(); });
        checkIfDue();
    } else {
        timer_.invalidate();
        if (isLoading() && !isUserInitiated_) {
            finish();
        }
    }
}

void UpdateService::checkIfDue() {
    const auto now = runLoop_.wallNow();
    const auto last = record_.lastCheck();
    // If the last check is in the future, the clock was set back.
    const auto isDue = !last || now < *last || now - *last >= checkInterval;
    if (isDue && !isShown() && !isLoading()) {
        isUserInitiated_ = false;
        check();
    }
}

void UpdateService::checkForUpdates() {
    if (!canCheckForUpdates.get()) {
        return;
    }
    if (std::holds_alternative<UpdateFound>(stage.get())) {
        stage.set(stage.get()); // brings the window to the front
        return;
    }
    isUserInitiated_ = true;
    if (isDownloading_) {
        stage.set(UpdateDownload{offered_.shortVersionString});
    } else {
        stage.set(UpdateCheckInProgress{});
    }
    if (!isLoading()) {
        check();
    }
}

void UpdateService::check() {
    isInstalling_ = false;
    newest_.reset();
    task_ = source_.loadAppcast(
        std::string(bundle_.feedUrl), [this](const AppcastItem& item) { consider(item); },
        [this](const std::optional<std::string>& error) { finishFeed(error); });
}

/// Remembers the newest release that this system can use.
void UpdateService::consider(const AppcastItem& item) {
    const auto isNewer = [&item](std::string_view version) {
        return std::is_gt(compareVersions(item.version, version));
    };
    if (isForThisSystem(item, system_) && isNewer(bundle_.version) &&
        (!newest_ || isNewer(newest_->version))) {
        newest_ = item;
    }
}

void UpdateService::finishFeed(const std::optional<std::string>& error) {
    task_.cancel();
    if (error) {
        fail(*error);
        return;
    }
    record_.setLastCheck(runLoop_.wallNow());
    if (newest_) {
        offer(*std::exchange(newest_, std::nullopt));
    } else if (isUserInitiated_) {
        finish(UpdateNotFound{});
    } else {
        finish();
    }
}

void UpdateService::offer(const AppcastItem& item) {
    if (!isUserInitiated_ &&
        (item.version == record_.skippedVersion() || item.version == handedOverVersion_)) {
        finish();
        return;
    }
    if (const auto reason = problemWith(item)) {
        fail(*reason);
        return;
    }
    offered_ = item;
    if (!isUserInitiated_ && automaticallyDownloadsUpdates() && !isDownloaded()) {
        download();
    } else {
        showOffer();
    }
}

/// Returns false if the file has been deleted since the download.
bool UpdateService::isDownloaded() const {
    return downloadedItem_ == offered_ && source_.exists(package_);
}

void UpdateService::showOffer() {
    stage.set(UpdateFound{offered_.shortVersionString, offered_.releaseNotes});
}

void UpdateService::install() {
    if (!std::holds_alternative<UpdateFound>(stage.get())) {
        return;
    }
    isUserInitiated_ = true;
    isInstalling_ = true;
    if (isDownloaded()) {
        handOver();
    } else {
        stage.set(UpdateDownload{offered_.shortVersionString});
        download();
    }
}

void UpdateService::skip() {
    if (std::holds_alternative<UpdateFound>(stage.get())) {
        record_.setSkippedVersion(offered_.version);
        finish();
    }
}

void UpdateService::dismiss() {
    if (std::holds_alternative<UpdatePermissionRequest>(stage.get())) {
        setAutomaticallyChecksForUpdates(false);
    } else if (isLoading() || std::holds_alternative<UpdateFound>(stage.get())) {
        finish();
    } else {
        stage.set({}); // the cycle has already ended
    }
}

void UpdateService::download() {
    downloadProgress.set(0);
    isDownloading_ = true;
    task_ = source_.download(
        offered_, [this](double part) { downloadProgress.set(part); },
        [this](const DownloadResult& result) { finishDownload(result); });
}

void UpdateService::finishDownload(const DownloadResult& result) {
    if (!result.package) {
        fail(*result.error);
        return;
    }
    if (const auto reason =
            problemWith(*result.package, offered_, bundle_.shortVersionString, system_)) {
        source_.remove(*result.package);
        fail(*reason);
        return;
    }
    task_.cancel();
    isDownloading_ = false;
    downloadedItem_ = offered_;
    package_ = *result.package;
    if (isInstalling_) {
        handOver();
    } else {
        showOffer();
    }
}

/// Ends the cycle, because the installer takes over.
void UpdateService::handOver() {
    handedOverVersion_ = offered_.version;
    finish(UpdateHandedOver{offered_.shortVersionString});
    installation_ = source_.open(
        package_, [this, version = offered_.shortVersionString](
                      const std::optional<std::string>& error) { finishHandOver(version, error); });
}

void UpdateService::finishHandOver(const std::string& version,
                                   const std::optional<std::string>& error) {
    if (!error) {
        return;
    }
    handedOverVersion_.clear(); // so that the release is offered again
    if (std::holds_alternative<UpdateHandedOver>(stage.get()) || !isShown()) {
        stage.set(UpdaterError{*error, version}); // otherwise the user has moved on
    }
}

/// Shows the error only if the user started the check.
void UpdateService::fail(const std::string& error) {
    const auto version = isDownloading_ ? offered_.shortVersionString : std::string();
    finish(isUserInitiated_ ? UpdateStage(UpdaterError{error, version}) : UpdateStage(), error);
}

void UpdateService::finish(UpdateStage last, const std::optional<std::string>& error) {
    task_.cancel();
    newest_.reset();
    isDownloading_ = false;
    if (isShown() || last.index() != 0) {
        stage.set(std::move(last));
    }
    didFinishUpdateCycle_(error);
}

} // namespace nocta
