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

/// The name that the vendor's service uses.
std::string_view key(FeedbackType type);
/// In English.
std::string_view label(FeedbackType type);

/// The feedback form's content, and sending it. It keeps what the user wrote until it is sent, even
/// if the window is closed. It lives as long as the process.
class FeedbackService {
public:
    /// `apiBase` is the scheme and host of the vendor's service, without a trailing slash; empty if
    /// this build has none.
    FeedbackService(UrlSession& urlSession, std::string_view apiBase);
    FeedbackService(const FeedbackService&) = delete;
    FeedbackService& operator=(const FeedbackService&) = delete;

    static FeedbackService& shared();

    // UTF-8.
    Published<std::string> message;
    Published<std::string> email; ///< optional
    Published<FeedbackType> feedbackType{FeedbackType::suggestion};

    Published<bool> isSending{false};
    Published<bool> sent{false};
    Published<std::optional<std::string>> errorMessage;

    /// False if the message is empty or is being sent.
    bool canSend() const;

    /// On failure sets `errorMessage` and keeps what the user wrote.
    void send();

    /// Returns to the form for another message.
    void sendAnother();

private:
    void complete(const UrlResponse& response);

    UrlSession& urlSession_;
    std::string_view apiBase_;
    Subscription task_;
};

} // namespace nocta
