#pragma once

#include "backends/linux/files/FileDescriptor.h"
#include "backends/linux/files/FileLock.h"

#include <QSocketNotifier>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace nocta {

/// Limits Nocta to one process per user and display server. The first process holds a lock and
/// listens on a socket next to it, in a folder that no other user can change. A later process
/// connects to the socket, and exits once it gets an answer. If the first process is already
/// exiting, the later one takes its place.
///
/// If the folder cannot be used, every process counts as the first, and one line about the problem
/// is printed to standard error.
class SingleInstance {
public:
    enum class Role { first, answered, unanswered };

    /// How long a process that is starting or exiting may take to answer.
    static constexpr auto maxAnswerTime = std::chrono::seconds(5);

    /// `server` names the session's display server. `folder` belongs to the user and is created if
    /// it is missing. The constructor returns when the role is known.
    SingleInstance(std::string_view server, const std::filesystem::path& folder,
                   std::chrono::milliseconds answerTimeout = maxAnswerTime);

    /// `unanswered` means that another Nocta of this user holds the lock but does not answer.
    Role role() const { return role_; }

    /// From now on, answers later processes and calls `started` for each one.
    void listen(std::function<void()> started);

    /// Lets a later process become the first.
    void close();

private:
    bool open(const std::filesystem::path& folder);
    Role findRole(std::chrono::milliseconds answerTimeout);
    bool bindSocket();
    bool connectTo(int socket) const;
    void answer();

    FileDescriptor folder_;
    std::string name_; ///< the name of the lock and the socket, without extensions
    FileLock lock_;
    FileDescriptor socket_;
    Role role_ = Role::first;
    std::unique_ptr<QSocketNotifier> waiting_;
    std::function<void()> started_;
};

} // namespace nocta
