#pragma once

#include "backends/linux/updates/AppcastUpdater.h"
#include "backends/virtual/VirtualDesktop.h"
#include "support/Process.h"
#include "support/Publisher.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace nocta {

/// The updater on a virtual clock, with a server that the test controls.
class UpdaterOnVirtualDesktop : public ::testing::Test {
protected:
    const std::string file = "the new Nocta";
    Publisher publisher;
    std::string key = publisher.publicKey();
    VirtualDesktop desktop;
    Bundle bundle{.shortVersionString = "1.2.3",
                  .version = "45",
                  .apiBase = {},
                  .feedUrl = "https://updates.example/appcast.xml",
                  .publicEdKey = key};
    TemporaryFolder folder;
    std::string memory = folder.path() + "/state/updates.json";
    std::string package = folder.path() + "/cache/nocta-update.deb";

    std::optional<AppcastUpdater> updater;
    std::optional<std::string> startError;
    using Errors = std::vector<std::optional<std::string>>;

    Errors cycles; ///< the result of each update cycle
    std::vector<std::string> opened;
    std::function<void(const std::optional<std::string>&)> answerOfOpener;

    void start() {
        updater.emplace(desktop.runLoop, desktop.urlSession, bundle, "2.36",
                        AppcastUpdater::Places{memory, folder.path() + "/cache"},
                        [this](const std::filesystem::path& path, const auto& whenOpened) {
                            opened.push_back(path.string() + ": " + contentOf(path.string()));
                            answerOfOpener = whenOpened;
                            return Subscription();
                        });
        startError = updater->startUpdater([this](const auto& error) { cycles.push_back(error); });
        desktop.runLoop.advance({});
    }
    /// Starts as if Nocta had run before and saved this record.
    void startWith(const std::string& remembered) {
        std::filesystem::create_directories(folder.path() + "/state");
        writeFile(memory, remembered);
        start();
    }
    void startChecking() { startWith(R"({"checksAutomatically":true})"); }

    template <class Stage>
    const Stage* shown() const {
        return std::get_if<Stage>(&updater->stage.get());
    }
    bool showsNothing() const { return shown<std::monostate>() != nullptr; }
    std::string shownError() const {
        const auto* const error = shown<UpdaterError>();
        return error == nullptr ? "" : error->description;
    }

    Release release() const {
        return {.signature = publisher.sign(file), .length = std::to_string(file.size())};
    }
    std::string asked() const {
        const auto* const request = desktop.urlSession.waiting();
        return request == nullptr ? "" : request->url;
    }
    void answer(const std::string& body, int status = 200) {
        desktop.urlSession.send(body);
        if (!asked().empty()) {
            desktop.urlSession.answer({.statusCode = status});
        }
    }
    void answerFeed(const std::string& items) {
        ASSERT_EQ(asked(), bundle.feedUrl);
        answer(appcast(items));
    }
    bool isKept() const {
        const auto cache = std::filesystem::path(package).parent_path();
        return std::filesystem::exists(cache) && !std::filesystem::is_empty(cache);
    }
};

} // namespace nocta
