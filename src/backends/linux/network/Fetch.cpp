#include "backends/linux/network/Fetch.h"

#include "backends/linux/Environment.h"
#include "backends/linux/process/HelperProcess.h"
#include "base/Deferred.h"
#include "base/Timer.h"
#include "base/Translatable.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace nocta {

namespace {

// Indexed by FetchError.
constexpr std::array errorTexts = {
    translatable("Nocta", "The connection was lost"),
    translatable("Nocta", "The server was not found"),
    translatable("Nocta", "The server cannot be reached"),
    translatable("Nocta", "The server cannot be trusted"),
    translatable("Nocta", "Too many redirects"),
    translatable("Nocta", "The address does not use HTTPS"),
    translatable("Nocta", "The server answered with an error"),
    translatable("Nocta", "The feed is too long"),
    translatable("Nocta", "The feed is not RSS"),
    translatable("Nocta", "The feed contains a document type declaration"),
    translatable("Nocta", "The feed is malformed"),
    translatable("Nocta", "The file is shorter than the feed says"),
    translatable("Nocta", "The file is longer than the feed says"),
    translatable("Nocta", "The file cannot be saved"),
    translatable("Nocta", "The file is not signed by the publisher"),
    translatable("Nocta", "The file is not a package"),
    translatable("Nocta", "It took too long"),
    translatable("Nocta", "nocta-fetch cannot be started"),
};
static_assert(errorTexts.size() == static_cast<std::size_t>(FetchError::count));

/// The only variables that the helper gets, so that it cannot reveal the others.
std::vector<std::string> proxySettings() {
    std::vector<std::string> variables;
    for (const auto* const name :
         {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY", "no_proxy", "NO_PROXY"}) {
        if (const auto value = environment(name); !value.empty()) {
            variables.push_back(std::string(name) + "=" + value);
        }
    }
    return variables;
}

/// One run of the helper. The handlers may end it.
class Task : public std::enable_shared_from_this<Task> {
public:
    Task(RunLoop& runLoop, FetchHandlers handlers)
        : handlers_(std::make_shared<const FetchHandlers>(std::move(handlers))),
          refuse_(runLoop, [this] { fail(FetchError::notStarted); }) {}

    void start(RunLoop& runLoop, const nlohmann::json& request, std::chrono::milliseconds timeout) {
        const auto text = request.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
        if (!helper_.start("nocta-fetch", {}, proxySettings()) ||
            !helper_.send(text.data(), text.size())) {
            refuse_.request();
            return;
        }
        helper_.endInput();
        helper_.whenReadable([this] { readAnswers(); });
        timeout_.start(runLoop, timeout, Repeat::no, [this] { fail(FetchError::timedOut); });
    }

    /// Ends the task. No handler is called afterward.
    void end() {
        timeout_.invalidate();
        helper_.kill();
        handlers_ = nullptr;
    }

private:
    /// Reads what has arrived, one buffer at a time.
    void readAnswers() {
        const auto self = shared_from_this(); // keeps this alive while handlers run
        const auto length = helper_.receive(buffer_.data() + filled_, buffer_.size() - filled_);
        if (length < 0 && errno == EAGAIN) {
            return;
        }
        if (length <= 0 || received_ + static_cast<std::size_t>(length) > maxFetchAnswersSize) {
            fail(FetchError::broken);
            return;
        }
        received_ += static_cast<std::size_t>(length);
        filled_ += static_cast<std::size_t>(length);
        std::size_t used = 0;
        while (handlers_ != nullptr) {
            const std::string_view rest(buffer_.data() + used, filled_ - used);
            const auto end = rest.find('\n');
            if (end == std::string_view::npos) {
                break;
            }
            used += end + 1;
            readAnswer(rest.substr(0, end));
        }
        std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(used),
                  buffer_.begin() + static_cast<std::ptrdiff_t>(filled_), buffer_.begin());
        filled_ -= used;
        if (filled_ == buffer_.size()) {
            fail(FetchError::broken); // no line is this long
        }
    }

    void readAnswer(std::string_view line) {
        const auto answer = parseFetchAnswer(line);
        const auto handlers = handlers_; // a handler may end the task
        if (!answer) {
            fail(FetchError::broken);
        } else if (const auto* const item = std::get_if<AppcastItem>(&*answer)) {
            handlers->item ? handlers->item(*item) : fail(FetchError::broken);
        } else if (const auto* const progress = std::get_if<FetchProgress>(&*answer)) {
            handlers->progress ? handlers->progress(*progress) : fail(FetchError::broken);
        } else {
            finish(*answer);
        }
    }

    void fail(FetchError error) { finish(FetchFailure{error}); }

    void finish(const FetchAnswer& answer) {
        const auto self = shared_from_this();
        const auto handlers = handlers_;
        end();
        if (handlers != nullptr) {
            handlers->end(answer);
        }
    }

    std::shared_ptr<const FetchHandlers> handlers_; ///< null once the task has ended
    std::array<char, maxFetchLineSize> buffer_{};
    std::size_t filled_ = 0;
    std::size_t received_ = 0;
    HelperProcess helper_;
    Timer timeout_;
    Deferred refuse_;
};

} // namespace

Subscription fetch(RunLoop& runLoop, const nlohmann::json& request,
                   std::chrono::milliseconds timeout, FetchHandlers handlers) {
    auto task = std::make_shared<Task>(runLoop, std::move(handlers));
    task->start(runLoop, request, timeout);
    return Subscription([task] { task->end(); });
}

std::string textOf(const FetchFailure& failure) {
    std::string text = errorTexts.at(static_cast<std::size_t>(failure.error));
    if (failure.error == FetchError::status) {
        text += ": " + std::to_string(failure.detail);
    } else if (failure.error == FetchError::fileNotSaved) {
        text += std::string(": ") + std::strerror(failure.detail);
    }
    return text;
}

} // namespace nocta
