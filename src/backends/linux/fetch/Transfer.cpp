#include "backends/linux/fetch/Transfer.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace nocta {

namespace {

constexpr long maxRedirects = 10;
constexpr std::size_t maxHeaderSize = 1 << 18; // bytes, of all responses and their trailers

bool startsWithIgnoringCase(std::string_view text, std::string_view lowerCaseStart) {
    const auto lower = [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    };
    return text.size() >= lowerCaseStart.size() &&
           std::ranges::equal(text.substr(0, lowerCaseStart.size()), lowerCaseStart, {}, lower);
}

FetchError errorOf(CURLcode code) {
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return FetchError::serverNotFound;
    case CURLE_COULDNT_CONNECT:
        return FetchError::notReachable;
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CACERT_BADFILE:
        return FetchError::notTrusted;
    case CURLE_TOO_MANY_REDIRECTS:
        return FetchError::redirected;
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_URL_MALFORMAT:
        return FetchError::notEncrypted;
    default:
        return FetchError::broken;
    }
}

} // namespace

Transfer::Transfer(const nlohmann::json& request, DidReceiveData didReceiveData)
    : didReceiveData_(std::move(didReceiveData)) {
    set(CURLOPT_URL, request.at("url").get<std::string>().c_str());
    set(CURLOPT_PROTOCOLS_STR, "https");
    set(CURLOPT_REDIR_PROTOCOLS_STR, "https");
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXREDIRS, maxRedirects);
    set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    set(CURLOPT_NOSIGNAL, 1L);
    if (const auto file = request.at("certificates").get<std::string>(); !file.empty()) {
        set(CURLOPT_CAINFO, file.c_str());
        set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
    }
    if (const auto& body = request.at("body"); !body.is_null()) {
        body_ = body.get<std::string>();
        set(CURLOPT_POST, 1L);
        set(CURLOPT_POSTREDIR, long{CURL_REDIR_POST_ALL}); // or the body would be lost
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body_.size()));
        set(CURLOPT_POSTFIELDS, body_.c_str());
    }
    addHeader("Expect:"); // do not wait for "100 Continue" before sending
    for (const auto& line : request.at("headers")) {
        addHeader(line.get<std::string>().c_str());
    }
    set(CURLOPT_HTTPHEADER, headers_);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_HEADERFUNCTION, &Transfer::didReceiveHeader);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_WRITEFUNCTION, &Transfer::didReceiveData);
}

Transfer::~Transfer() {
    curl_slist_free_all(headers_);
    curl_easy_cleanup(handle_);
}

std::optional<FetchError> Transfer::run() {
    const auto code = curl_easy_perform(handle_);
    return code == CURLE_OK ? std::nullopt : std::optional(errorOf(code));
}

int Transfer::status() const {
    long status = 0;
    curl_easy_getinfo(handle_, CURLINFO_RESPONSE_CODE, &status);
    return static_cast<int>(status);
}

template <class Value>
void Transfer::set(CURLoption option, Value value) {
    if (curl_easy_setopt(handle_, option, value) != CURLE_OK) {
        std::abort(); // we refuse a libcurl that cannot be restricted to HTTPS
    }
}

void Transfer::addHeader(const char* line) {
    headers_ = curl_slist_append(headers_, line);
}

/// Refuses encodings other than chunks, because libcurl would decompress the body.
bool Transfer::receiveHeader(std::string_view line) {
    constexpr std::string_view encoding = "transfer-encoding:";
    headerSize_ += line.size();
    if (headerSize_ > maxHeaderSize) {
        return false;
    }
    if (!startsWithIgnoringCase(line, encoding)) {
        return true;
    }
    line.remove_prefix(encoding.size());
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    line = line.substr(0, line.find_last_not_of(" \t\r\n") + 1);
    constexpr std::string_view chunked = "chunked";
    return line.size() == chunked.size() && startsWithIgnoringCase(line, chunked);
}

std::size_t Transfer::didReceiveHeader(char* data, std::size_t /*one*/, std::size_t size,
                                       void* self) {
    return static_cast<Transfer*>(self)->receiveHeader({data, size}) ? size : 0;
}

std::size_t Transfer::didReceiveData(char* data, std::size_t /*one*/, std::size_t size,
                                     void* self) {
    return static_cast<Transfer*>(self)->didReceiveData_({data, size}) ? size
                                                                       : CURL_WRITEFUNC_ERROR;
}

} // namespace nocta
