#pragma once

#include "base/CallbackList.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace nocta {

/// Sends process-wide notifications by name. `post` calls every observer of the name, in order of
/// registration, before it returns. A notification carries no object or user info.
///
///     auto subscription = center.observe("DidWake", [this] { refresh(); });
///     center.post("DidWake"); // calls refresh
class NotificationCenter {
public:
    Subscription observe(std::string_view name, std::function<void()> callback);
    void post(std::string_view name);

private:
    std::map<std::string, CallbackList<>, std::less<>> observers_;
};

} // namespace nocta
