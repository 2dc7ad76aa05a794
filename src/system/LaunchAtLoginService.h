#pragma once

#include "base/Published.h"
#include "platform/LoginItem.h"

namespace nocta {

/// Turns on or off that the program starts with the user's session. The state is the desktop's own,
/// read when this object was made; the setting `launchAtLogin` is not used. It lives as long as the
/// process.
class LaunchAtLoginService {
public:
    explicit LaunchAtLoginService(LoginItem& loginItem);
    LaunchAtLoginService(const LaunchAtLoginService&) = delete;
    LaunchAtLoginService& operator=(const LaunchAtLoginService&) = delete;

    static LaunchAtLoginService& shared();

    Published<bool> isEnabled;

    /// A failure prints one line on standard output and does not change `isEnabled`.
    void enable();
    void disable();

private:
    LoginItem& loginItem_;
};

} // namespace nocta
