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

/// What the vendor's service calls it.
std::string_view key(FeedbackType type);
/// In English.
std::string_view label(FeedbackType type);

/// What the user writes to the makers, and its way there. It keeps what was written until it was
/// sent, whatever becomes of the window, and lives as long as the process.
class FeedbackService {
public:
    /// `apiBase` is the scheme and host of the vendor's service, without a slash at its end; empty
    /// where this build has none.
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

    /// Nothing to send, or something on its way: not now.
    bool canSend() const;

    /// Whatever fails is in `errorMessage`, and what was written stays.
    void send();

    /// Back to the form, for another message.
    void sendAnother();

private:
    void complete(const UrlResponse& response);

    UrlSession& urlSession_;
    std::string_view apiBase_;
    Subscription task_;
};

} // namespace nocta
