#pragma once

#include "backends/linux/fetch/FetchProtocol.h"

#include <nlohmann/json_fwd.hpp>

#include <curl/curl.h>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace nocta {

/// One HTTPS request. Bodies are never decompressed, and the response header and the trailer have a
/// limited size.
class Transfer {
public:
    /// Gets the pieces of the body. Returns false to end the transfer.
    using DidReceiveData = std::function<bool(std::string_view data)>;

    /// `request` has the members `url`, `body`, `headers` and `certificates`, as in the protocol. A
    /// body that is not null is posted. Throws nlohmann::json::exception on any other request.
    Transfer(const nlohmann::json& request, DidReceiveData didReceiveData);
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;
    ~Transfer();

    /// Returns an error unless the response was received to its end.
    std::optional<FetchError> run();

    /// The HTTP status, once the first piece of the body has arrived or `run` has returned.
    int status() const;

private:
    template <class Value>
    void set(CURLoption option, Value value);
    void addHeader(const char* line);

    bool receiveHeader(std::string_view line);
    static std::size_t didReceiveHeader(char* data, std::size_t one, std::size_t size, void* self);
    static std::size_t didReceiveData(char* data, std::size_t one, std::size_t size, void* self);

    CURL* handle_ = curl_easy_init();
    curl_slist* headers_ = nullptr;
    std::string body_;
    std::size_t headerSize_ = 0;
    DidReceiveData didReceiveData_;
};

} // namespace nocta
