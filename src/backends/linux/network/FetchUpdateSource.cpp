#include "backends/linux/network/FetchUpdateSource.h"

#include "backends/linux/files/PrivateFolder.h"
#include "backends/linux/network/Fetch.h"
#include "backends/linux/network/OpenPackage.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <variant>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr auto feedTimeout = 60s;
constexpr auto fileTimeout = 1h;
constexpr auto verificationTimeout = 60s;

std::string errorOf(const FetchAnswer& answer) {
    const auto* const failure = std::get_if<FetchFailure>(&answer);
    return textOf(failure != nullptr ? *failure : FetchFailure{});
}

/// A fraction from 0 to 1, even if the helper reports too many bytes.
double fraction(std::int64_t received, std::int64_t length) {
    return static_cast<double>(std::min(received, length)) / static_cast<double>(length);
}

/// Downloads a file under a temporary name, verifies it, and then gives it its final name.
class Download : public std::enable_shared_from_this<Download> {
public:
    struct Jobs {
        nlohmann::json download;
        nlohmann::json verify;
    };

    Download(RunLoop& runLoop, std::filesystem::path file,
             std::function<void(double)> didMakeProgress,
             std::function<void(const DownloadResult&)> completion)
        : runLoop_(runLoop), file_(std::move(file)), part_(file_.string() + ".part"),
          didMakeProgress_(std::move(didMakeProgress)), completion_(std::move(completion)) {}
    Download(const Download&) = delete;
    Download& operator=(const Download&) = delete;
    ~Download() {
        task_.cancel(); // before the file is removed, so that nothing creates it again
        removePart();
    }

    void start(Jobs jobs, std::int64_t length) {
        createPrivateFolders(file_.parent_path()); // nocta-fetch reports the error
        removePart();
        jobs.download["file"] = jobs.verify["file"] = part_.filename().string();
        task_ = fetch(runLoop_, jobs.download, fileTimeout,
                      {.progress =
                           [this, length](const FetchProgress& progress) {
                               didMakeProgress_(fraction(progress.received, length));
                           },
                       .end =
                           [this, verify = std::move(jobs.verify)](const FetchAnswer& answer) {
                               if (std::holds_alternative<FetchEnd>(answer)) {
                                   startVerification(verify);
                               } else {
                                   finish({.error = errorOf(answer)});
                               }
                           }});
    }

private:
    /// The process that has talked to the server no longer exists and cannot change the file.
    void startVerification(const nlohmann::json& job) {
        task_ =
            fetch(runLoop_, job, verificationTimeout, {.end = [this](const FetchAnswer& answer) {
                      if (const auto* const package = std::get_if<Package>(&answer)) {
                          rename(*package);
                      } else {
                          finish({.error = errorOf(answer)});
                      }
                  }});
    }

    void rename(Package package) {
        std::error_code error;
        std::filesystem::rename(part_, file_, error);
        package.path = file_.string();
        if (error) {
            finish({.error = textOf({FetchError::fileNotSaved, error.value()})});
        } else {
            finish({.package = std::move(package)});
        }
    }

    void finish(const DownloadResult& result) {
        const auto self = shared_from_this(); // the completion may cancel the download
        removePart();
        completion_(result);
    }

    void removePart() const {
        std::error_code error;
        std::filesystem::remove(part_, error);
    }

    RunLoop& runLoop_;
    std::filesystem::path file_;
    std::filesystem::path part_;
    std::function<void(double)> didMakeProgress_;
    std::function<void(const DownloadResult&)> completion_;
    Subscription task_;
};

} // namespace

FetchUpdateSource::FetchUpdateSource(RunLoop& runLoop, const Bundle& bundle,
                                     std::filesystem::path folder, std::string certificates)
    : runLoop_(runLoop), bundle_(bundle), folder_(std::move(folder)),
      certificates_(std::move(certificates)) {}

nlohmann::json FetchUpdateSource::request(const char* job, const std::string& url) const {
    return {{"job", job},
            {"url", url},
            {"headers", {"User-Agent: Nocta/" + std::string(bundle_.shortVersionString)}},
            {"body", nullptr},
            {"certificates", certificates_},
            {"folder", folder_.string()}};
}

Subscription FetchUpdateSource::loadAppcast(const std::string& url,
                                            std::function<void(const AppcastItem&)> didFindItem,
                                            Completion completion) {
    return fetch(runLoop_, request("feed", url), feedTimeout,
                 {.item = std::move(didFindItem),
                  .end = [completion = std::move(completion)](const FetchAnswer& answer) {
                      if (std::holds_alternative<FetchEnd>(answer)) {
                          completion(std::nullopt);
                      } else {
                          completion(errorOf(answer));
                      }
                  }});
}

Subscription FetchUpdateSource::download(const AppcastItem& item,
                                         std::function<void(double)> didMakeProgress,
                                         std::function<void(const DownloadResult&)> completion) {
    const auto name = "nocta-" + item.shortVersionString + "-" + std::to_string(getpid()) + ".deb";
    auto job = request("download", item.url);
    job["length"] = item.length;
    auto verification = nlohmann::json{{"job", "verify"},
                                       {"folder", folder_.string()},
                                       {"signature", item.edSignature},
                                       {"key", std::string(bundle_.publicEdKey)}};
    auto download = std::make_shared<Download>(runLoop_, folder_ / name, std::move(didMakeProgress),
                                               std::move(completion));
    download->start({std::move(job), std::move(verification)}, item.length);
    return Subscription([download]() mutable { download.reset(); });
}

bool FetchUpdateSource::exists(const Package& package) const {
    std::error_code error;
    return std::filesystem::exists(package.path, error);
}

void FetchUpdateSource::remove(const Package& package) {
    std::error_code error;
    std::filesystem::remove(package.path, error);
}

void FetchUpdateSource::removePackages(Duration age) {
    std::error_code error;
    if (std::filesystem::is_symlink(folder_, error)) {
        return; // it is not ours
    }
    const auto now = std::filesystem::file_time_type::clock::now();
    for (std::filesystem::directory_iterator entry(folder_, error), end; !error && entry != end;
         entry.increment(error)) { // `++` would throw
        std::error_code entryError;
        const auto time = entry->last_write_time(entryError);
        if (!entryError && now - time > age) {
            std::filesystem::remove(*entry, entryError);
        }
    }
}

Subscription FetchUpdateSource::open(const Package& package, Completion completion) {
    return openPackage(package.path, std::move(completion));
}

} // namespace nocta
