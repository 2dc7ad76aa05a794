#pragma once

#include "backends/linux/FileDescriptor.h"

#include <QSocketNotifier>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace nocta {

/// Makes Nocta one process per user and display. The first start listens on a socket that the
/// kernel removes with the process; a later start knocks there, and has nothing else to do once it
/// has been answered. Where the first is just ending, the later one takes its place.
class SingleInstance {
public:
    enum class Role { first, answered, unanswered };

    /// `display` names the session's display server. Returns when the role is known.
    explicit SingleInstance(std::string_view display);

    /// `unanswered` means that a Nocta of this user is there and does not react.
    Role role() const { return role_; }

    /// Answers later starts from now on, and calls `knocked` for each.
    void listen(std::function<void()> knocked);

    /// Lets a later start be the first.
    void close();

private:
    Role knock(std::string_view display);
    void answer();

    Role role_ = Role::first;
    FileDescriptor socket_;
    std::unique_ptr<QSocketNotifier> knocks_;
    std::function<void()> knocked_;
};

} // namespace nocta
