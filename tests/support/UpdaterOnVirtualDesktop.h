#pragma once

#include "backends/virtual/VirtualDesktop.h"
#include "backends/virtual/VirtualUpdateSource.h"
#include "updates/UpdateService.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace nocta {

/// The update service on a virtual clock, with a publisher that the test controls.
class UpdaterOnVirtualDesktop : public ::testing::Test {
protected:
    VirtualDesktop desktop;
    VirtualUpdateSource source{desktop.trace};
    MemoryDefaultsStore store{desktop.trace};
    UpdateRecord record{store};
    Bundle bundle{.shortVersionString = "1.2.3",
                  .version = "45",
                  .apiBase = {},
                  .feedUrl = "https://updates.example/appcast.xml",
                  .publicEdKey = "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA="};
    const AppcastItem release{.version = "46",
                              .shortVersionString = "1.3",
                              .url = "https://updates.example/nocta.deb",
                              .edSignature = "c2ln",
                              .length = 1000};
    const Package package{.path = "/cache/nocta-1.3-7.deb",
                          .name = "nocta",
                          .version = "1.3-1",
                          .architecture = "amd64"};

    std::optional<UpdateService> updater;
    std::optional<std::string> startError;
    using Errors = std::vector<std::optional<std::string>>;

    Errors cycles; ///< the result of each update cycle

    void start() {
        updater.emplace(desktop.runLoop, source, store, bundle,
                        UpdateSystem{.version = "2.36", .architecture = "amd64"});
        startError = updater->startUpdater([this](const auto& error) { cycles.push_back(error); });
        desktop.runLoop.advance({});
    }
    /// Starts as if Nocta had run before and the user had allowed automatic checks.
    void startChecking(bool downloads = false) {
        record.setChecksAutomatically(true);
        record.setDownloadsAutomatically(downloads);
        start();
    }

    template <class Stage>
    const Stage* shown() const {
        return std::get_if<Stage>(&updater->stage.get());
    }
    bool showsNothing() const { return shown<std::monostate>() != nullptr; }
    std::string shownError() const {
        const auto* const error = shown<UpdaterError>();
        return error == nullptr ? "" : error->description;
    }

    void answerFeed(const std::vector<AppcastItem>& items) {
        ASSERT_EQ(source.loading(), bundle.feedUrl);
        for (const auto& item : items) {
            source.find(item);
        }
        source.finishFeed();
    }
    void answerDownload() {
        ASSERT_EQ(source.loading(), release.url);
        source.finishDownload({.package = package});
    }
    std::vector<std::string> opened() const { return desktop.trace.calls("open "); }
};

} // namespace nocta
