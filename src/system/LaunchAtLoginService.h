#pragma once

#include "base/Published.h"
#include "platform/LoginItem.h"

namespace nocta {

/// Turns launch at login on or off. It reads the state from the desktop when it is created; the
/// setting `launchAtLogin` is not used. The service exists for the lifetime of the process.
class LaunchAtLoginService {
public:
    explicit LaunchAtLoginService(LoginItem& loginItem);
    LaunchAtLoginService(const LaunchAtLoginService&) = delete;
    LaunchAtLoginService& operator=(const LaunchAtLoginService&) = delete;

    static LaunchAtLoginService& shared();

    Published<bool> isEnabled;

    /// On failure, `enable` and `disable` print one line on standard output and do not change
    /// `isEnabled`.
    void enable();
    void disable();

private:
    LoginItem& loginItem_;
};

} // namespace nocta
