#pragma once

#include "base/Deferred.h"
#include "base/Timer.h"
#include "platform/Bundle.h"
#include "platform/DefaultsStore.h"
#include "platform/UpdateSource.h"
#include "platform/Updater.h"
#include "updates/ReleaseChecks.h"
#include "updates/UpdateRecord.h"

#include <optional>
#include <string>

namespace nocta {

/// The updater of desktops that do not bring one. It reads the publisher's appcast, daily if the
/// user has allowed automatic checks, and passes packages that the publisher has signed to the
/// desktop's installer. It loads one feed or file at a time. A cycle is a check and everything that
/// follows from it.
class UpdateService final : public Updater {
public:
    /// `store` holds nothing but the record of this service.
    UpdateService(RunLoop& runLoop, UpdateSource& source, DefaultsStore& store,
                  const Bundle& bundle, UpdateSystem system);

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
    bool isDownloaded() const;

    void begin();
    void keepChecking();
    void checkIfDue();
    void check();
    void consider(const AppcastItem& item);
    void finishFeed(const std::optional<std::string>& error);
    void offer(const AppcastItem& item);
    void showOffer();

    void download();
    void finishDownload(const DownloadResult& result);
    void handOver();
    void finishHandOver(const std::string& version, const std::optional<std::string>& error);

    void fail(const std::string& error);
    /// Ends the cycle.
    void finish(UpdateStage last = {}, const std::optional<std::string>& error = {});

    RunLoop& runLoop_;
    UpdateSource& source_;
    const Bundle& bundle_;
    UpdateSystem system_;
    UpdateRecord record_;
    DidFinishUpdateCycle didFinishUpdateCycle_;

    // For the current cycle.
    bool isUserInitiated_ = false;
    bool isInstalling_ = false;  ///< at the user's request
    bool isDownloading_ = false; ///< a file; otherwise the task loads the feed
    std::optional<AppcastItem> newest_;
    AppcastItem offered_;

    AppcastItem downloadedItem_;    ///< what `package_` was downloaded for
    Package package_;               ///< downloaded by this process, and verified
    std::string handedOverVersion_; ///< probably installed and waiting for the next start

    Timer timer_;
    Deferred begin_;
    Subscription installation_;
    Subscription task_;
};

} // namespace nocta
