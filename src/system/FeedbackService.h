#pragma once

#include "base/Published.h"
#include "platform/UrlSession.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace nocta {

enum class FeedbackType { suggestion, bug, other };

inline constexpr std::array allFeedbackTypes = {FeedbackType::suggestion, FeedbackType::bug,
                                                FeedbackType::other};

/// The name of the type in the vendor's web service.
std::string_view key(FeedbackType type);
/// The label in English.
std::string_view label(FeedbackType type);

/// Holds the content of the feedback form and sends it. It keeps the content until it is sent, and
/// goes on sending, even if the user closes the window. The service exists for the lifetime of the
/// process.
class FeedbackService {
public:
    /// `apiBase` is the address of the vendor's web service, `https://HOST` or `https://HOST:PORT`,
    /// or empty if this build has no such service.
    FeedbackService(UrlSession& urlSession, std::string_view apiBase);
    FeedbackService(const FeedbackService&) = delete;
    FeedbackService& operator=(const FeedbackService&) = delete;

    static FeedbackService& shared();

    // Strings are UTF-8.
    Published<std::string> message;
    Published<std::string> email; ///< optional
    Published<FeedbackType> feedbackType{FeedbackType::suggestion};

    Published<bool> isSending{false};
    Published<bool> sent{false};
    Published<std::optional<std::string>> errorMessage;

    /// Returns false if this build has no usable address to send to. `send` then fails.
    bool isAvailable() const;

    /// Returns false if the message is empty or is being sent.
    bool canSend() const;

    /// Sends the message. On success, sets `sent` and removes the message. On failure, sets
    /// `errorMessage` and keeps the content.
    void send();

    /// Prepares the form for the next use: resets `sent` and `errorMessage`. The content stays.
    void forgetResult();

private:
    /// `sentMessage` is the content of `message` when it was sent.
    void complete(const UrlResponse& response, const std::string& sentMessage);

    UrlSession& urlSession_;
    std::string_view apiBase_;
    Subscription task_;
};

} // namespace nocta
