// nocta-fetch: does one job for Nocta and exits. Everything that a server sends is parsed here, in
// a process that can reach nothing else, so that a flaw in the parsing code does not affect Nocta
// or the user's files. The job that verifies a package is a process of its own, which never talks
// to a server.

#include "backends/linux/fetch/AppcastParser.h"
#include "backends/linux/fetch/Confinement.h"
#include "backends/linux/fetch/DebianPackage.h"
#include "backends/linux/fetch/Ed25519Signature.h"
#include "backends/linux/fetch/FetchProtocol.h"
#include "backends/linux/fetch/PackageFile.h"
#include "backends/linux/fetch/Transfer.h"
#include "backends/linux/process/HelperProtocol.h"

#include <nlohmann/json.hpp>

#include <array>
#include <csignal>
#include <cstdlib>
#include <curl/curl.h>
#include <fcntl.h>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

using namespace nocta;
using Json = nlohmann::json;

constexpr int succeeded = 200;

bool writeAll(std::string_view text) {
    while (!text.empty()) {
        const auto written = write(STDOUT_FILENO, text.data(), text.size());
        if (written <= 0) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool send(const FetchAnswer& answer) {
    return writeAll(serialized(answer));
}

std::string readAll() {
    std::string content;
    std::array<char, 4096> block{};
    for (ssize_t length = 0; (length = read(STDIN_FILENO, block.data(), block.size())) > 0;) {
        content.append(block.data(), static_cast<std::size_t>(length));
    }
    return content;
}

bool sendRequest(const Json& request) {
    if (!confine({.network = true, .certificates = request.at("certificates")})) {
        return false;
    }
    bool hasBody = false;
    Transfer transfer(request, [&](std::string_view /*data*/) {
        hasBody = true;
        return false; // the status is known, and nobody reads the body
    });
    const auto error = transfer.run();
    return send(error && !hasBody ? FetchAnswer(FetchFailure{*error})
                                  : FetchAnswer(FetchStatus{transfer.status()}));
}

/// Runs a transfer whose body counts only if the status is 200. `receive` and `finish` return why
/// the body is refused, or nothing.
template <class Receive, class Finish>
bool load(const Json& request, Receive receive, Finish finish) {
    std::optional<FetchFailure> failure;
    Transfer transfer(request, [&](std::string_view data) {
        failure = transfer.status() == succeeded
                      ? receive(data)
                      : std::optional(FetchFailure{FetchError::status, transfer.status()});
        return !failure;
    });
    const auto error = transfer.run();
    if (failure) {
        return send(*failure);
    }
    if (error) {
        return send(FetchFailure{*error});
    }
    if (transfer.status() != succeeded) {
        return send(FetchFailure{FetchError::status, transfer.status()});
    }
    failure = finish();
    return send(failure ? FetchAnswer(*failure) : FetchAnswer(FetchEnd{}));
}

bool loadFeed(const Json& request) {
    if (!confine({.network = true, .certificates = request.at("certificates")})) {
        return false;
    }
    bool isSent = true;
    AppcastParser parser([&](const AppcastItem& item) { isSent = isSent && send(item); });
    const auto failureOf = [](std::optional<FetchError> error) {
        return error ? std::optional(FetchFailure{*error}) : std::nullopt;
    };
    return load(
               request, [&](std::string_view data) { return failureOf(parser.add(data)); },
               [&] { return failureOf(parser.finish()); }) &&
           isSent;
}

bool download(const Json& request) {
    const auto length = request.at("length").get<std::int64_t>();
    PackageFile file(request.at("folder"), request.at("file"), length);
    if (!confine(
            {.network = true, .maxFileSize = length, .certificates = request.at("certificates")})) {
        return false;
    }
    if (const auto failure = file.add({})) {
        return send(*failure);
    }
    const auto step = length / 100; // bytes between two reports
    std::int64_t reported = 0;
    return load(
        request,
        [&](std::string_view data) {
            auto failure = file.add(data);
            if (!failure && file.received() - reported > step) {
                reported = file.received();
                send(FetchProgress{reported});
            }
            return failure;
        },
        [&] { return file.finish(); });
}

bool verify(const Json& request) {
    const MappedFile file(request.at("folder"), request.at("file"));
    if (!confine({})) {
        return false;
    }
    const auto bytes = file.bytes();
    if (!isSigned(bytes, request.at("signature").get<std::string>(),
                  request.at("key").get<std::string>())) {
        return send(FetchFailure{FetchError::notSigned});
    }
    const auto package = readDebianPackage(bytes);
    return send(package ? FetchAnswer(*package)
                        : FetchAnswer(FetchFailure{FetchError::notAPackage}));
}

bool run(const Json& request) {
    struct Job {
        std::string_view name;
        bool (*run)(const Json& request);
    };
    for (const auto& job : {Job{"send", sendRequest}, Job{"feed", loadFeed},
                            Job{"download", download}, Job{"verify", verify}}) {
        if (request.at("job") == job.name) {
            return job.run(request);
        }
    }
    return false;
}

/// Closes what the parent process left open, and stops writing to its standard error.
void dropInheritedFiles() {
    const auto null = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(null, STDERR_FILENO);
    close_range(STDERR_FILENO + 1, std::numeric_limits<unsigned>::max(), 0);
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (!isOfHelperProtocol(argumentCount, arguments)) {
        return otherProtocolStatus;
    }
    prctl(PR_SET_PDEATHSIG, SIGKILL); // no other process needs the answer
    std::signal(SIGPIPE, SIG_IGN);
    dropInheritedFiles();
    try {
        return run(Json::parse(readAll())) ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const Json::exception&) { // not a request of this protocol
        return EXIT_FAILURE;
    }
}
