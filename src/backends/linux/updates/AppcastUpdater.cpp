#include "backends/linux/updates/AppcastUpdater.h"

#include "backends/linux/updates/VersionOrder.h"
#include "base/Translatable.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <compare>
#include <system_error>
#include <utility>
#include <variant>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr Duration checkInterval = 24h;
constexpr Duration lookInterval = 1h; // on the wall clock, which continues during sleep
constexpr auto feedTimeout = 60s;
constexpr auto fileTimeout = 1h;
constexpr std::size_t maxFeedSize = 1 << 17;    // bytes
constexpr std::int64_t maxFileSize = 1LL << 30; // bytes
constexpr int succeeded = 200;

constexpr std::array packageSuffixes = {".deb", ".rpm"};

/// Returns the local name of a release's file, of which the feed determines only the extension.
/// Returns nothing if no installer can open the file.
std::optional<std::filesystem::path> packageName(const std::string& url) {
    const auto* const suffix = std::ranges::find_if(
        packageSuffixes, [&](const char* candidate) { return url.ends_with(candidate); });
    return suffix == packageSuffixes.end()
               ? std::nullopt
               : std::optional(std::filesystem::path(std::string("nocta-update") + *suffix));
}

bool isForThisSystem(const AppcastItem& item, const std::string& systemVersion) {
    return item.channel.empty() && (item.os.empty() || item.os == "linux") &&
           std::is_lteq(compareVersions(item.minimumSystemVersion, systemVersion));
}

/// Returns why a release cannot be offered, or nothing if its description shows no problem. The
/// file has not been downloaded yet.
std::optional<std::string> problemWith(const AppcastItem& item) {
    if (!item.url.starts_with("https://")) {
        return translatable("Nocta", "The file's address does not use HTTPS");
    }
    if (!ed25519Signature(item.edSignature)) {
        return translatable("Nocta", "The file is not signed");
    }
    if (item.length <= 0 || item.length > maxFileSize) {
        return translatable("Nocta", "The feed gives no valid length for the file");
    }
    if (!packageName(item.url)) {
        return translatable("Nocta", "The file is not a package");
    }
    return std::nullopt;
}

} // namespace

AppcastUpdater::AppcastUpdater(RunLoop& runLoop, UrlSession& urlSession, const Bundle& bundle,
                               std::string systemVersion, const Places& places,
                               PackageInstaller openPackage)
    : runLoop_(runLoop), urlSession_(urlSession), bundle_(bundle),
      systemVersion_(std::move(systemVersion)), downloads_(places.downloads),
      openPackage_(std::move(openPackage)), memory_(places.memory),
      publicKey_(ed25519PublicKey(bundle.publicEdKey)), begin_(runLoop, [this] { begin(); }) {}

Updater::Availability AppcastUpdater::availability() const {
    if (bundle_.isPackageManaged) {
        return Availability::packageManager;
    }
    return bundle_.feedUrl.empty() || !publicKey_ ? Availability::noFeed : Availability::available;
}

std::optional<std::string> AppcastUpdater::startUpdater(DidFinishUpdateCycle didFinishUpdateCycle) {
    if (availability() != Availability::available) {
        return "There is no feed to check";
    }
    didFinishUpdateCycle_ = std::move(didFinishUpdateCycle);
    canCheckForUpdates.set(true);
    begin_.request();
    return std::nullopt;
}

/// Asks the user for permission on the second launch, to keep the first launch simple.
void AppcastUpdater::begin() {
    removeOldFiles();
    if (memory_.record().checksAutomatically) {
        keepChecking();
    } else if (!memory_.isKept()) {
        memory_.keep();
    } else if (!isShown()) {
        stage.set(UpdatePermissionRequest{});
    }
}

bool AppcastUpdater::automaticallyChecksForUpdates() const {
    return memory_.record().checksAutomatically.value_or(false);
}

void AppcastUpdater::setAutomaticallyChecksForUpdates(bool checks) {
    memory_.update([checks](UpdaterRecord& record) { record.checksAutomatically = checks; });
    if (std::holds_alternative<UpdatePermissionRequest>(stage.get())) {
        stage.set({});
    }
    keepChecking();
}

bool AppcastUpdater::automaticallyDownloadsUpdates() const {
    return memory_.record().downloadsAutomatically;
}

void AppcastUpdater::setAutomaticallyDownloadsUpdates(bool downloads) {
    memory_.update(
        [downloads](UpdaterRecord& record) { record.downloadsAutomatically = downloads; });
}

void AppcastUpdater::keepChecking() {
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

/// Removes only old files, because an installer may still read a recent one.
void AppcastUpdater::removeOldFiles() const {
    std::error_code error;
    const auto now = std::filesystem::file_time_type::clock::now();
    for (std::filesystem::directory_iterator entry(downloads_, error), end; !error && entry != end;
         entry.increment(error)) { // `++` would throw
        std::error_code entryError;
        const auto time = entry->last_write_time(entryError);
        if (!entryError && now - time > checkInterval) {
            std::filesystem::remove(*entry, entryError);
        }
    }
}

void AppcastUpdater::checkIfDue() {
    const auto now = runLoop_.wallNow();
    const auto& last = memory_.record().lastCheck;
    // If the last check is in the future, the clock was set back.
    const auto isDue = !last || now < *last || now - *last >= checkInterval;
    if (isDue && !isShown() && !isLoading()) {
        isUserInitiated_ = false;
        check();
    }
}

void AppcastUpdater::checkForUpdates() {
    if (!canCheckForUpdates.get()) {
        return;
    }
    if (std::holds_alternative<UpdateFound>(stage.get())) {
        stage.set(stage.get()); // brings the window to the front
        return;
    }
    isUserInitiated_ = true;
    if (file_) {
        stage.set(UpdateDownload{offered_.shortVersionString});
    } else {
        stage.set(UpdateCheckInProgress{});
    }
    if (!isLoading()) {
        check();
    }
}

void AppcastUpdater::check() {
    feed_.clear();
    isInstalling_ = false;
    load(std::string(bundle_.feedUrl), feedTimeout, &AppcastUpdater::readFeed,
         [this](std::string_view piece) { receiveFeed(piece); });
}

void AppcastUpdater::receiveFeed(std::string_view piece) {
    if (piece.size() > maxFeedSize - feed_.size()) {
        fail(translatable("Nocta", "The feed is too long"));
        return;
    }
    feed_ += piece;
}

void AppcastUpdater::readFeed() {
    auto appcast = parseAppcast(std::exchange(feed_, {}));
    if (appcast.error) {
        fail(*appcast.error);
        return;
    }
    memory_.update([this](UpdaterRecord& record) {
        record.lastCheck = std::chrono::floor<std::chrono::seconds>(runLoop_.wallNow());
    });
    std::erase_if(appcast.items, [this](const AppcastItem& item) {
        return !isForThisSystem(item, systemVersion_) ||
               std::is_lteq(compareVersions(item.version, bundle_.version));
    });
    const auto newest =
        std::ranges::max_element(appcast.items, [](const AppcastItem& a, const AppcastItem& b) {
            return std::is_lt(compareVersions(a.version, b.version));
        });
    if (newest != appcast.items.end()) {
        offer(*newest);
    } else if (isUserInitiated_) {
        finish(UpdateNotFound{});
    } else {
        finish();
    }
}

void AppcastUpdater::offer(const AppcastItem& item) {
    if (!isUserInitiated_ &&
        (item.version == memory_.record().skippedVersion || item.version == handedOverVersion_)) {
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

/// The path of the offered file, whether or not it has been downloaded.
std::filesystem::path AppcastUpdater::package() const {
    return downloads_ / *packageName(offered_.url);
}

/// Returns false if the file has been deleted since the download.
bool AppcastUpdater::isDownloaded() const {
    std::error_code error;
    return downloaded_.edSignature == offered_.edSignature && downloaded_.url == offered_.url &&
           std::filesystem::exists(package(), error);
}

void AppcastUpdater::showOffer() {
    stage.set(UpdateFound{offered_.shortVersionString, offered_.releaseNotes});
}

void AppcastUpdater::install() {
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

void AppcastUpdater::skip() {
    if (std::holds_alternative<UpdateFound>(stage.get())) {
        memory_.update([this](UpdaterRecord& record) { record.skippedVersion = offered_.version; });
        finish();
    }
}

void AppcastUpdater::dismiss() {
    if (std::holds_alternative<UpdatePermissionRequest>(stage.get())) {
        setAutomaticallyChecksForUpdates(false);
    } else if (isLoading() || std::holds_alternative<UpdateFound>(stage.get())) {
        finish();
    } else {
        stage.set({}); // the cycle has already ended
    }
}

void AppcastUpdater::download() {
    downloadProgress.set(0);
    file_.emplace(package(), offered_.length, *publicKey_, *ed25519Signature(offered_.edSignature));
    load(offered_.url, fileTimeout, &AppcastUpdater::finishFile,
         [this](std::string_view piece) { receiveFile(piece); });
}

void AppcastUpdater::receiveFile(std::string_view piece) {
    if (const auto error = file_->add(piece)) {
        fail(*error);
        return;
    }
    downloadProgress.set(file_->progress());
}

void AppcastUpdater::finishFile() {
    if (const auto error = file_->finish()) {
        fail(*error);
        return;
    }
    file_.reset();
    downloaded_ = offered_;
    if (isInstalling_) {
        handOver();
    } else {
        showOffer();
    }
}

/// Ends the cycle, because the installer takes over.
void AppcastUpdater::handOver() {
    handedOverVersion_ = offered_.version;
    finish(UpdateHandedOver{offered_.shortVersionString});
    installation_ = openPackage_(package(), [this, version = offered_.shortVersionString](
                                                const std::optional<std::string>& error) {
        const auto isSeen = std::holds_alternative<UpdateHandedOver>(stage.get()) || !isShown();
        if (error && isSeen) { // otherwise the user has moved on
            stage.set(UpdaterError{*error, version});
        }
    });
}

/// Calls `received` once the whole response has arrived.
void AppcastUpdater::load(const std::string& url, Duration timeout,
                          void (AppcastUpdater::*received)(),
                          UrlSession::DidReceiveData didReceiveData) {
    const auto userAgent = "Nocta/" + std::string(bundle_.shortVersionString);
    task_ = urlSession_.dataTask(
        {.url = url,
         .method = "GET",
         .headers = {{"User-Agent", userAgent}},
         .body = {},
         .timeout = std::chrono::duration_cast<std::chrono::milliseconds>(timeout)},
        [this, received](const UrlResponse& response) {
            task_.cancel();
            if (response.error) {
                fail(*response.error);
            } else if (response.statusCode != succeeded) {
                fail(translatable("Nocta", "The server answered with an error") +
                     (": " + std::to_string(*response.statusCode)));
            } else {
                (this->*received)();
            }
        },
        std::move(didReceiveData));
}

/// Shows the error only if the user started the check.
void AppcastUpdater::fail(const std::string& error) {
    const auto version = file_ ? offered_.shortVersionString : std::string();
    finish(isUserInitiated_ ? UpdateStage(UpdaterError{error, version}) : UpdateStage(), error);
}

void AppcastUpdater::finish(UpdateStage last, const std::optional<std::string>& error) {
    task_.cancel();
    feed_ = {};
    file_.reset();
    if (isShown() || last.index() != 0) {
        stage.set(std::move(last));
    }
    didFinishUpdateCycle_(error);
}

} // namespace nocta
