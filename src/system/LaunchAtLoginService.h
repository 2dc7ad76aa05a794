#pragma once

#include "base/Published.h"
#include "platform/LoginItem.h"

namespace nocta {

/// Starts the program with the user's session, or no longer does. The desktop's own record counts,
/// as it was when this was made; the setting `launchAtLogin` plays no part. It lives as long as the
/// process.
class LaunchAtLoginService {
public:
    explicit LaunchAtLoginService(LoginItem& loginItem);
    LaunchAtLoginService(const LaunchAtLoginService&) = delete;
    LaunchAtLoginService& operator=(const LaunchAtLoginService&) = delete;

    static LaunchAtLoginService& shared();

    Published<bool> isEnabled;

    /// A failure is one line on standard output and leaves `isEnabled` as it was.
    void enable();
    void disable();

private:
    LoginItem& loginItem_;
};

} // namespace nocta
