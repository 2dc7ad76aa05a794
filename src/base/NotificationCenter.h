#pragma once

#include "base/CallbackList.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace nocta {

/// Process-wide notifications by name, without object or user info. Posting calls every observer
/// of the name at once, in order of registration.
class NotificationCenter {
public:
    Subscription observe(std::string_view name, std::function<void()> callback);
    void post(std::string_view name);

private:
    std::map<std::string, CallbackList<>, std::less<>> observers_;
};

} // namespace nocta
