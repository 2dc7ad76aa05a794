// nocta-fetch: downloads from one address for Nocta and exits. Everything that a server sends is
// parsed here first, so that a flaw in the parsing code does not affect Nocta's own process. Nocta
// reads the result at its own speed.

#include "backends/linux/network/FetchProtocol.h"
#include "backends/linux/process/HelperProtocol.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <curl/curl.h>
#include <string>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

using namespace nocta;

constexpr long maxRedirects = 10;

bool writeAll(const void* data, std::size_t size) {
    const auto* bytes = static_cast<const char*>(data);
    while (size > 0) {
        const auto written = write(STDOUT_FILENO, bytes, size);
        if (written <= 0) {
            return false;
        }
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

bool send(FetchKind kind, std::uint32_t value = 0) {
    const FetchMessage message{kind, value};
    return writeAll(&message, sizeof message);
}

std::string readAll() {
    std::string content;
    std::array<char, 4096> block{};
    for (ssize_t length = 0; (length = read(STDIN_FILENO, block.data(), block.size())) > 0;) {
        content.append(block.data(), static_cast<std::size_t>(length));
    }
    return content;
}

class Transfer {
public:
    explicit Transfer(const nlohmann::json& request)
        : body_(request.at("body").get<std::string>()) {
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
        if (request.at("method") == "POST") {
            set(CURLOPT_POST, 1L);
            set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body_.size()));
            set(CURLOPT_POSTFIELDS, body_.c_str());
        }
        addHeader("Expect:"); // do not wait for "100 Continue" before sending
        for (const auto& line : request.at("headers")) {
            addHeader(line.get<std::string>().c_str());
        }
        set(CURLOPT_HTTPHEADER, headers_);
        set(CURLOPT_WRITEDATA, this);
        set(CURLOPT_WRITEFUNCTION, &Transfer::receive);
    }
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;
    ~Transfer() {
        curl_slist_free_all(headers_);
        curl_easy_cleanup(handle_);
    }

    bool run() {
        const auto code = curl_easy_perform(handle_);
        if (code != CURLE_OK) {
            return send(FetchKind::error, static_cast<std::uint32_t>(errorOf(code)));
        }
        return sendStatus() && send(FetchKind::end);
    }

private:
    template <class Value>
    void set(CURLoption option, Value value) {
        if (curl_easy_setopt(handle_, option, value) != CURLE_OK) {
            std::abort(); // we refuse a libcurl that cannot be restricted to HTTPS
        }
    }
    void addHeader(const char* line) { headers_ = curl_slist_append(headers_, line); }

    static FetchError errorOf(CURLcode code) {
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

    bool sendStatus() {
        if (hasSaidStatus_) {
            return true;
        }
        hasSaidStatus_ = true;
        long status = 0;
        curl_easy_getinfo(handle_, CURLINFO_RESPONSE_CODE, &status);
        return send(FetchKind::status, static_cast<std::uint32_t>(status));
    }

    static std::size_t receive(char* data, std::size_t /*one*/, std::size_t size, void* self) {
        auto& transfer = *static_cast<Transfer*>(self);
        if (!transfer.sendStatus()) {
            return CURL_WRITEFUNC_ERROR;
        }
        for (std::size_t done = 0; done < size;) {
            const auto piece = std::min<std::size_t>(size - done, maxFetchPieceSize);
            if (!send(FetchKind::data, static_cast<std::uint32_t>(piece)) ||
                !writeAll(data + done, piece)) {
                return CURL_WRITEFUNC_ERROR;
            }
            done += piece;
        }
        return size;
    }

    CURL* handle_ = curl_easy_init();
    curl_slist* headers_ = nullptr;
    std::string body_;
    bool hasSaidStatus_ = false;
};

} // namespace

int main(int argumentCount, char** arguments) {
    if (!isOfHelperProtocol(argumentCount, arguments)) {
        return otherProtocolStatus;
    }
    prctl(PR_SET_PDEATHSIG, SIGKILL); // no other process needs the answer
    std::signal(SIGPIPE, SIG_IGN);
    curl_global_init(CURL_GLOBAL_DEFAULT);
    const auto request = nlohmann::json::parse(readAll(), nullptr, false);
    return !request.is_discarded() && Transfer(request).run() ? EXIT_SUCCESS : EXIT_FAILURE;
}
