#pragma once

#include "base/RunLoop.h"
#include "platform/Bundle.h"
#include "platform/UpdateSource.h"

#include <nlohmann/json_fwd.hpp>

#include <filesystem>
#include <string>

namespace nocta {

/// Loads and verifies updates through nocta-fetch, and opens packages through xdg-open. Packages
/// are kept in a folder that belongs to this user alone, under names that contain their version and
/// the number of this process.
class FetchUpdateSource final : public UpdateSource {
public:
    /// `folder` is used for nothing else. `certificates` is a file of trusted authorities that
    /// replaces the system's.
    FetchUpdateSource(RunLoop& runLoop, const Bundle& bundle, std::filesystem::path folder,
                      std::string certificates = {});

    Subscription loadAppcast(const std::string& url,
                             std::function<void(const AppcastItem&)> didFindItem,
                             Completion completion) override;
    Subscription download(const AppcastItem& item, std::function<void(double)> didMakeProgress,
                          std::function<void(const DownloadResult&)> completion) override;
    bool exists(const Package& package) const override;
    void remove(const Package& package) override;
    void removePackages(Duration age) override;
    Subscription open(const Package& package, Completion completion) override;

private:
    nlohmann::json request(const char* job, const std::string& url) const;

    RunLoop& runLoop_;
    const Bundle& bundle_;
    std::filesystem::path folder_;
    std::string certificates_;
};

} // namespace nocta
