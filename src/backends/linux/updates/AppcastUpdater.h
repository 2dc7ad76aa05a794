#pragma once

#include "backends/linux/updates/Appcast.h"
#include "backends/linux/updates/Ed25519Signature.h"
#include "backends/linux/updates/UpdateFile.h"
#include "backends/linux/updates/UpdaterMemory.h"
#include "base/Deferred.h"
#include "base/Timer.h"
#include "platform/Bundle.h"
#include "platform/Updater.h"
#include "platform/UrlSession.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace nocta {

/// A standard updater. It reads the publisher's appcast, daily if the user has allowed automatic
/// checks, and passes files that the publisher has signed to the desktop's installer. It downloads
/// one feed or file at a time. A cycle is a check and everything that follows from it.
class AppcastUpdater final : public Updater {
public:
    /// Works like `openPackage`.
    using PackageInstaller = std::function<Subscription(
        const std::filesystem::path& package,
        std::function<void(const std::optional<std::string>& error)> opened)>;

    struct Places {
        std::filesystem::path memory;    ///< a file
        std::filesystem::path downloads; ///< a folder that is used for nothing else
    };

    AppcastUpdater(RunLoop& runLoop, UrlSession& urlSession, const Bundle& bundle,
                   std::string systemVersion, const Places& places, PackageInstaller openPackage);

    Availability availability() const override;
    std::optional<std::string> startUpdater(DidFinishUpdateCycle didFinishUpdateCycle) override;

    bool automaticallyChecksForUpdates() const override;
    void setAutomaticallyChecksForUpdates(bool checks) override;
    bool automaticallyDownloadsUpdates() const override;
    void setAutomaticallyDownloadsUpdates(bool downloads) override;

    void checkForUpdates() override;
    void install() override;
    void skip() override;
    void dismiss() override;

private:
    bool isShown() const { return stage.get().index() != 0; }
    bool isLoading() const { return static_cast<bool>(task_); }
    std::filesystem::path package() const;
    bool isDownloaded() const;

    void begin();
    void keepChecking();
    void removeOldFiles() const;
    void checkIfDue();
    void check();
    void receiveFeed(std::string_view piece);
    void readFeed();
    void offer(const AppcastItem& item);
    void showOffer();

    void download();
    void receiveFile(std::string_view piece);
    void finishFile();
    void handOver();

    void load(const std::string& url, Duration timeout, void (AppcastUpdater::*received)(),
              UrlSession::DidReceiveData didReceiveData);
    void fail(const std::string& error);
    /// Ends the cycle.
    void finish(UpdateStage last = {}, const std::optional<std::string>& error = {});

    RunLoop& runLoop_;
    UrlSession& urlSession_;
    const Bundle& bundle_;
    std::string systemVersion_;
    std::filesystem::path downloads_;
    PackageInstaller openPackage_;
    UpdaterMemory memory_;
    std::optional<Ed25519PublicKey> publicKey_;
    DidFinishUpdateCycle didFinishUpdateCycle_;

    // For the current cycle.
    bool isUserInitiated_ = false;
    bool isInstalling_ = false; ///< at the user's request
    std::string feed_;
    AppcastItem offered_;
    std::optional<UpdateFile> file_;

    AppcastItem downloaded_;        ///< downloaded by this process, and verified
    std::string handedOverVersion_; ///< probably installed and waiting for the next start

    Timer timer_;
    Deferred begin_;
    Subscription installation_;
    Subscription task_;
};

} // namespace nocta
