#include "backends/linux/network/CurlUrlSession.h"

#include "backends/linux/network/FetchProtocol.h"
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
#include <utility>

namespace nocta {

namespace {

// Indexed by FetchError. No error text contains text from the server.
constexpr std::array errorTexts = {
    translatable("Nocta", "The connection was lost"),
    translatable("Nocta", "The server was not found"),
    translatable("Nocta", "The server cannot be reached"),
    translatable("Nocta", "The server cannot be trusted"),
    translatable("Nocta", "Too many redirects"),
    translatable("Nocta", "The address does not use HTTPS"),
};
static_assert(errorTexts.size() == static_cast<std::size_t>(FetchError::count));

const char* textOf(std::uint32_t error) {
    return error < errorTexts.size() ? errorTexts.at(error) : errorTexts.front();
}

std::string serialized(const UrlRequest& request, const std::string& certificates) {
    auto headers = nlohmann::json::array();
    for (const auto& [name, value] : request.headers) {
        auto header = name;
        header.append(": ").append(value);
        headers.push_back(std::move(header));
    }
    return nlohmann::json{{"url", request.url},
                          {"method", request.method},
                          {"headers", headers},
                          {"body", request.body},
                          {"certificates", certificates}}
        .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

/// One task, from the request to its completion. The callbacks may destroy the task.
class Task : public std::enable_shared_from_this<Task> {
public:
    Task(RunLoop& runLoop, UrlSession::Completion completion,
         UrlSession::DidReceiveData didReceiveData)
        : completion_(std::move(completion)), didReceiveData_(std::move(didReceiveData)),
          refuse_(runLoop, [this] { finish({.error = refusal_}); }) {}

    void start(RunLoop& runLoop, const UrlRequest& request, const std::string& certificates) {
        if (!request.url.starts_with("https://")) {
            refuse(textOf(static_cast<std::uint32_t>(FetchError::notEncrypted)));
            return;
        }
        const auto question = serialized(request, certificates);
        if (!helper_.start("nocta-fetch") || !helper_.send(question.data(), question.size())) {
            refuse(translatable("Nocta", "nocta-fetch cannot be started"));
            return;
        }
        helper_.endInput();
        helper_.whenReadable([this] { receive(); });
        timeout_.start(runLoop, request.timeout, Repeat::no,
                       [this] { finish({.error = translatable("Nocta", "It took too long")}); });
    }

    /// Ends the task. No callback is called afterward.
    void end() {
        timeout_.invalidate();
        helper_.kill();
        completion_ = nullptr;
        didReceiveData_ = nullptr;
    }

private:
    void refuse(const char* reason) {
        refusal_ = reason;
        refuse_.request();
    }

    /// Reads what has arrived, one buffer at a time.
    void receive() {
        const auto self = shared_from_this(); // keeps this alive during the callbacks
        const auto length = helper_.receive(buffer_.data() + filled_, buffer_.size() - filled_);
        if (length < 0 && errno == EAGAIN) {
            return;
        }
        if (length <= 0) {
            finish({.error = textOf(static_cast<std::uint32_t>(FetchError::broken))});
            return;
        }
        filled_ += static_cast<std::size_t>(length);
        while (const auto used = parseMessage()) {
            std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(used),
                      buffer_.begin() + static_cast<std::ptrdiff_t>(filled_), buffer_.begin());
            filled_ -= used;
        }
    }

    /// Handles the message at the start of the buffer. Returns its size, or 0 if it is incomplete
    /// or the task has ended.
    std::size_t parseMessage() {
        FetchMessage message;
        if (completion_ == nullptr || filled_ < sizeof message) {
            return 0;
        }
        std::memcpy(&message, buffer_.data(), sizeof message);
        switch (message.kind) {
        case FetchKind::status:
            status_ = static_cast<int>(message.value);
            if (didReceiveData_ == nullptr) {
                finish({.statusCode = status_}); // the caller ignores the body
            }
            return sizeof message;
        case FetchKind::data:
            if (message.value <= maxFetchPieceSize) {
                return receive(sizeof message, message.value);
            }
            break;
        case FetchKind::end:
            finish({.statusCode = status_});
            return 0;
        case FetchKind::error:
            finish({.error = textOf(message.value)});
            return 0;
        }
        finish({.error = errorTexts.front()}); // not one of our messages
        return 0;
    }

    std::size_t receive(std::size_t begin, std::size_t size) {
        if (filled_ < begin + size) {
            return 0;
        }
        const auto didReceiveData = didReceiveData_; // the callback may end the task
        didReceiveData({buffer_.data() + begin, size});
        return begin + size;
    }

    void finish(const UrlResponse& response) {
        const auto completion = std::exchange(completion_, nullptr);
        end();
        if (completion) {
            completion(response);
        }
    }

    UrlSession::Completion completion_;
    UrlSession::DidReceiveData didReceiveData_;
    std::string refusal_;
    std::optional<int> status_;
    std::array<char, sizeof(FetchMessage) + maxFetchPieceSize> buffer_{};
    std::size_t filled_ = 0;
    HelperProcess helper_;
    Timer timeout_;
    Deferred refuse_;
};

} // namespace

CurlUrlSession::CurlUrlSession(RunLoop& runLoop, std::string certificates)
    : runLoop_(runLoop), certificates_(std::move(certificates)) {}

Subscription CurlUrlSession::dataTask(const UrlRequest& request, Completion completion,
                                      DidReceiveData didReceiveData) {
    auto task = std::make_shared<Task>(runLoop_, std::move(completion), std::move(didReceiveData));
    task->start(runLoop_, request, certificates_);
    return Subscription([task] { task->end(); });
}

} // namespace nocta
