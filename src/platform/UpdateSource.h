#pragma once

#include "base/RunLoop.h"
#include "base/Subscription.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace nocta {

/// One release in an appcast, as described by the feed, in UTF-8. The forms of the values are
/// checked, but nothing proves that they are true.
struct AppcastItem {
    std::string version{};            ///< used to compare releases
    std::string shortVersionString{}; ///< shown to users; `version` if the feed has none
    std::string minimumSystemVersion{};
    std::string channel{}; ///< empty for the default channel
    std::string os{};      ///< empty for any system
    std::string url{};
    std::string edSignature{};  ///< in Base64
    std::int64_t length = 0;    ///< the file's size in bytes; 0 if the feed has none
    std::string releaseNotes{}; ///< plain text

    bool operator==(const AppcastItem&) const = default;
};

inline constexpr std::int64_t maxPackageSize = 1 << 25; ///< bytes

/// A package that the publisher has signed. The control data inside the package name the program.
struct Package {
    std::string path{}; ///< of the local file
    std::string name{};
    std::string version{};      ///< with the package's own epoch and revision
    std::string architecture{}; ///< as the package system names it

    bool operator==(const Package&) const = default;
};

/// Exactly one member has a value.
struct DownloadResult {
    std::optional<Package> package{};
    std::optional<std::string> error{}; ///< one line
};

/// Reads the publisher's feed, and downloads, verifies and opens packages. It decides nothing: the
/// caller chooses the release. Each function that returns a subscription calls its completion once,
/// from the run loop, unless the subscription is destroyed first.
class UpdateSource {
public:
    /// Gets a one-line error, or nothing on success.
    using Completion = std::function<void(const std::optional<std::string>& error)>;

    virtual ~UpdateSource() = default;

    /// Calls `didFindItem` for each release, in the order of the feed, and then `completion`.
    /// Entries without a version or a URL are left out. The items count only if the completion
    /// gets no error.
    virtual Subscription loadAppcast(const std::string& url,
                                     std::function<void(const AppcastItem&)> didFindItem,
                                     Completion completion) = 0;

    /// Downloads the file of a release and verifies its length and the publisher's signature.
    /// `didMakeProgress` gets the fraction that has arrived, 0.0–1.0. A canceled or failed download
    /// leaves no file behind.
    virtual Subscription download(const AppcastItem& item,
                                  std::function<void(double)> didMakeProgress,
                                  std::function<void(const DownloadResult&)> completion) = 0;

    /// Whether the file of a downloaded package still exists.
    virtual bool exists(const Package& package) const = 0;

    /// Deletes the file of a downloaded package.
    virtual void remove(const Package& package) = 0;

    /// Deletes the files of earlier downloads that are older than `age`.
    virtual void removePackages(Duration age) = 0;

    /// Opens a package with the desktop's installer. It succeeds once the installer has accepted
    /// the package.
    virtual Subscription open(const Package& package, Completion completion) = 0;
};

} // namespace nocta
