#include "backends/linux/process/StandardStreams.h"

#include <QMessageLogContext>
#include <QString>

#include <climits>
#include <csignal>
#include <fcntl.h>
#include <iostream>
#include <poll.h>
#include <streambuf>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nocta {

namespace {

constexpr std::size_t maxLineLength = 16384; // longer lines are dropped

/// Writes to a stream without ever waiting. O_NONBLOCK belongs to the open file description, which
/// is shared with the shell and with everything else that prints there, so a pipe or a terminal is
/// reopened. A socket cannot be reopened, but takes the flag with each message.
class Outlet {
public:
    explicit Outlet(int stream) : descriptor_(stream) {
        struct stat status {};
        fstat(stream, &status);
        isSocket_ = S_ISSOCK(status.st_mode);
        if (S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode)) {
            const auto path = "/proc/self/fd/" + std::to_string(stream);
            const auto own = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
            descriptor_ = own >= 0 ? own : stream;
        }
    }

    void write(std::string_view text) const {
        if (isSocket_) {
            send(descriptor_, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
            return;
        }
        // This branch is for a stream that cannot be reopened, such as another user's terminal.
        pollfd writable{.fd = descriptor_, .events = POLLOUT, .revents = 0};
        if (poll(&writable, 1, 0) == 1) {
            text = text.substr(0, PIPE_BUF); // a pipe that is ready has room for this
            [[maybe_unused]] const auto written = ::write(descriptor_, text.data(), text.size());
        }
    }

private:
    int descriptor_;
    bool isSocket_ = false;
};

/// Collects text and writes whole lines. It never reports an error to the stream, because after an
/// error the stream would stop printing.
class LineBuffer final : public std::streambuf {
public:
    explicit LineBuffer(const Outlet& outlet) : outlet_(outlet) {}

protected:
    int_type overflow(int_type character) override {
        if (!traits_type::eq_int_type(character, traits_type::eof())) {
            append(std::string(1, traits_type::to_char_type(character)));
        }
        return traits_type::not_eof(character);
    }
    std::streamsize xsputn(const char* text, std::streamsize length) override {
        append(std::string(text, static_cast<std::size_t>(length)));
        return length;
    }

private:
    void append(const std::string& text) {
        text_ += text;
        const auto end = text_.rfind('\n');
        if (end != std::string::npos) {
            outlet_.write(std::string_view(text_).substr(0, end + 1));
            text_.erase(0, end + 1);
        }
        if (text_.size() > maxLineLength) {
            text_.clear();
        }
    }

    const Outlet& outlet_;
    std::string text_;
};

const Outlet& errorOutlet() {
    static const Outlet outlet(STDERR_FILENO);
    return outlet;
}

/// Qt calls this from any thread, so it must not share a buffer.
void printMessage(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    errorOutlet().write((qFormatLogMessage(type, context, message) + u'\n').toStdString());
}

} // namespace

void makeOutputNonBlocking() {
    std::signal(SIGPIPE, SIG_IGN);
    // Never destroyed: code that runs at the very end of the process may still print.
    static const auto& output = *new Outlet(STDOUT_FILENO);
    static auto& outputBuffer = *new LineBuffer(output);
    static auto& errorBuffer = *new LineBuffer(errorOutlet());
    std::cout.rdbuf(&outputBuffer);
    std::cerr.rdbuf(&errorBuffer);
    std::clog.rdbuf(&errorBuffer);
    qInstallMessageHandler(printMessage);
}

} // namespace nocta
