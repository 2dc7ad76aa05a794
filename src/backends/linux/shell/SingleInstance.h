#pragma once

#include "backends/linux/FileDescriptor.h"

#include <QSocketNotifier>

#include <functional>
#include <memory>
#include <string_view>

namespace nocta {

/// Makes Nocta one process per user and display. The first start listens on a socket that the
/// kernel removes with the process; a later start knocks there and has nothing else to do.
class SingleInstance {
public:
    /// `display` names the session's display server.
    explicit SingleInstance(std::string_view display);

    /// False when another Nocta of this user is there and has been told.
    bool isFirst() const { return isFirst_; }

    /// Calls `knocked` at every later start.
    void listen(std::function<void()> knocked);

private:
    void answer();

    bool isFirst_ = true;
    FileDescriptor socket_;
    std::unique_ptr<QSocketNotifier> knocks_;
    std::function<void()> knocked_;
};

} // namespace nocta
