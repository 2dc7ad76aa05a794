#pragma once

#include "backends/virtual/Trace.h"
#include "platform/Updater.h"

#include <optional>
#include <string>
#include <utility>

namespace nocta {

/// An updater whose stages a test sets.
class VirtualUpdater final : public Updater {
public:
    explicit VirtualUpdater(Trace& trace) : trace_(trace) {}

    Availability present = Availability::available;
    bool checksAutomatically = false;
    bool downloadsAutomatically = false;
    DidFinishUpdateCycle didFinishUpdateCycle; ///< set by `startUpdater`

    Availability availability() const override { return present; }
    std::optional<std::string> startUpdater(DidFinishUpdateCycle didFinish) override {
        trace_.record("startUpdater");
        didFinishUpdateCycle = std::move(didFinish);
        if (present != Availability::available) {
            return "There is no address for updates";
        }
        canCheckForUpdates.set(true);
        return std::nullopt;
    }
    bool automaticallyChecksForUpdates() const override { return checksAutomatically; }
    void setAutomaticallyChecksForUpdates(bool checks) override {
        trace_.record(std::string("setAutomaticallyChecksForUpdates ") + (checks ? "1" : "0"));
        checksAutomatically = checks;
    }
    bool automaticallyDownloadsUpdates() const override { return downloadsAutomatically; }
    void setAutomaticallyDownloadsUpdates(bool downloads) override {
        trace_.record(std::string("setAutomaticallyDownloadsUpdates ") + (downloads ? "1" : "0"));
        downloadsAutomatically = downloads;
    }
    void checkForUpdates() override {
        trace_.record("checkForUpdates");
        stage.set(UpdateCheckInProgress{});
    }
    void install() override { trace_.record("install"); }
    void skip() override { end("skip"); }
    void dismiss() override { end("dismiss"); }

private:
    void end(const char* call) {
        trace_.record(call);
        stage.set({});
    }

    Trace& trace_;
};

} // namespace nocta
