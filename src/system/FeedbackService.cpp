#include "system/FeedbackService.h"

#include "base/Translatable.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr std::string_view scheme = "https://";
constexpr std::string_view hostCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-.";
constexpr std::string_view path = "/api/feedback";
constexpr auto timeout = 60s;
constexpr int succeeded = 200; // the only HTTP status that means success

struct Presentation {
    std::string_view key;
    std::string_view label;
};

constexpr std::array presentations = {
    Presentation{"suggestion", translatable("Nocta", "Suggestion")},
    Presentation{"bug", translatable("Nocta", "Bug report")},
    Presentation{"other", translatable("Nocta", "Other")}};

/// Unicode white space and line separators, in UTF-8.
constexpr std::array<std::string_view, 25> blanks = {
    "\t",           "\n",           "\v",           "\f",           "\r",           " ",
    "\xC2\x85",     "\xC2\xA0",     "\xE1\x9A\x80", "\xE2\x80\x80", "\xE2\x80\x81", "\xE2\x80\x82",
    "\xE2\x80\x83", "\xE2\x80\x84", "\xE2\x80\x85", "\xE2\x80\x86", "\xE2\x80\x87", "\xE2\x80\x88",
    "\xE2\x80\x89", "\xE2\x80\x8A", "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\xAF", "\xE2\x81\x9F",
    "\xE3\x80\x80"};

bool isPort(std::string_view text) {
    std::uint16_t port = 0; // stays 0 if the number is too high
    const auto* const end = text.data() + text.size();
    return std::from_chars(text.data(), end, port).ptr == end && port != 0;
}

std::string_view trimmed(std::string_view text) {
    const auto* blank = blanks.end();
    const auto begins = [&](std::string_view candidate) { return text.starts_with(candidate); };
    while ((blank = std::ranges::find_if(blanks, begins)) != blanks.end()) {
        text.remove_prefix(blank->size());
    }
    const auto ends = [&](std::string_view candidate) { return text.ends_with(candidate); };
    while ((blank = std::ranges::find_if(blanks, ends)) != blanks.end()) {
        text.remove_suffix(blank->size());
    }
    return text;
}

} // namespace

std::string_view key(FeedbackType type) {
    return presentations.at(static_cast<std::size_t>(type)).key;
}

std::string_view label(FeedbackType type) {
    return presentations.at(static_cast<std::size_t>(type)).label;
}

FeedbackService::FeedbackService(UrlSession& urlSession, std::string_view apiBase)
    : urlSession_(urlSession), apiBase_(apiBase) {}

bool FeedbackService::isAvailable() const {
    if (!apiBase_.starts_with(scheme)) {
        return false;
    }
    const auto authority = apiBase_.substr(scheme.size());
    const auto host = authority.substr(0, authority.find(':'));
    return !host.empty() && host.find_first_not_of(hostCharacters) == std::string_view::npos &&
           (host.size() == authority.size() || isPort(authority.substr(host.size() + 1)));
}

bool FeedbackService::canSend() const {
    return !isSending.get() && !trimmed(message.get()).empty();
}

void FeedbackService::send() {
    if (!canSend()) {
        return;
    }
    isSending.set(true);
    errorMessage.set(std::nullopt);
    std::map<std::string, std::string> fields = {{"message", std::string(trimmed(message.get()))},
                                                 {"type", std::string(key(feedbackType.get()))}};
    if (const auto address = trimmed(email.get()); !address.empty()) {
        fields["email"] = address;
    }
    std::string body;
    try {
        body = nlohmann::json(fields).dump();
    } catch (const nlohmann::json::exception&) { // not valid UTF-8
        body.clear();
    }
    if (!isAvailable() || body.empty()) {
        errorMessage.set(translatable("Nocta", "Failed to prepare request"));
        isSending.set(false);
        return;
    }
    task_ = urlSession_.dataTask({.url = std::string(apiBase_) + std::string(path),
                                  .method = "POST",
                                  .headers = {{"Content-Type", "application/json"}},
                                  .body = std::move(body),
                                  .timeout = timeout},
                                 [this, sentMessage = message.get()](const UrlResponse& response) {
                                     complete(response, sentMessage);
                                 });
}

void FeedbackService::forgetResult() {
    sent.set(false);
    errorMessage.set(std::nullopt);
}

void FeedbackService::complete(const UrlResponse& response, const std::string& sentMessage) {
    isSending.set(false);
    if (response.error) {
        errorMessage.set(response.error);
    } else if (response.statusCode == succeeded) {
        if (message.get() == sentMessage) { // the user may have written more in the meantime
            message.set({});
        }
        sent.set(true);
    } else {
        errorMessage.set(translatable("Nocta", "Failed to send. Please try again."));
    }
}

} // namespace nocta
