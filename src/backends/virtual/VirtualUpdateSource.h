#pragma once

#include "backends/virtual/Trace.h"
#include "platform/UpdateSource.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace nocta {

/// A publisher in memory. Every request stays pending until a test answers it.
class VirtualUpdateSource final : public UpdateSource {
public:
    explicit VirtualUpdateSource(Trace& trace) : trace_(trace) {}

    /// The URL that is being loaded: a feed's, a file's, or empty.
    std::string loading() const {
        return feed_ ? feed_->url : file_ ? file_->item.url : std::string();
    }
    /// Answers the request for a feed.
    void find(const AppcastItem& item) const { feed_->didFindItem(item); }
    void finishFeed(const std::optional<std::string>& error = {}) {
        const auto feed = std::exchange(feed_, nullptr);
        feed->completion(error);
    }
    /// Answers the request for a file. A downloaded file exists until a test removes it.
    void progress(double part) const { file_->didMakeProgress(part); }
    void finishDownload(const DownloadResult& result) {
        const auto file = std::exchange(file_, nullptr);
        if (result.package) {
            files.insert(result.package->path);
        }
        file->completion(result);
    }
    /// Answers the last request to open a package.
    void finishOpening(const std::optional<std::string>& error) const { opened_(error); }

    std::set<std::string> files; ///< the packages that exist

    Subscription loadAppcast(const std::string& url,
                             std::function<void(const AppcastItem&)> didFindItem,
                             Completion completion) override {
        trace_.record("loadAppcast " + url);
        feed_ = std::make_shared<Feed>(Feed{url, std::move(didFindItem), std::move(completion)});
        return Subscription([this, feed = std::weak_ptr(feed_)] {
            if (feed_ == feed.lock()) {
                feed_ = nullptr;
            }
        });
    }
    Subscription download(const AppcastItem& item, std::function<void(double)> didMakeProgress,
                          std::function<void(const DownloadResult&)> completion) override {
        trace_.record("download " + item.url);
        file_ =
            std::make_shared<File>(File{item, std::move(didMakeProgress), std::move(completion)});
        return Subscription([this, file = std::weak_ptr(file_)] {
            if (file_ == file.lock()) {
                file_ = nullptr;
            }
        });
    }
    bool exists(const Package& package) const override { return files.contains(package.path); }
    void remove(const Package& package) override { files.erase(package.path); }
    void removePackages(Duration age) override {
        trace_.record("removePackages " +
                      std::to_string(std::chrono::duration_cast<std::chrono::hours>(age).count()));
    }
    Subscription open(const Package& package, Completion completion) override {
        trace_.record("open " + package.path);
        opened_ = std::move(completion);
        return {};
    }

private:
    struct Feed {
        std::string url;
        std::function<void(const AppcastItem&)> didFindItem;
        Completion completion;
    };
    struct File {
        AppcastItem item;
        std::function<void(double)> didMakeProgress;
        std::function<void(const DownloadResult&)> completion;
    };

    Trace& trace_;
    std::shared_ptr<Feed> feed_; ///< pending
    std::shared_ptr<File> file_; ///< pending
    Completion opened_;
};

} // namespace nocta
