#pragma once

#include <csignal>
#include <string_view>
#include <unistd.h>

namespace nocta {

/// The version of every protocol between Nocta and its helper programs. Each helper gets it as its
/// last argument. Increase it whenever one of the protocols changes: a package may replace the
/// helpers while Nocta is running, and a helper of another version must exit without an answer.
inline constexpr char helperProtocol[] = "2";

/// The exit status of a helper that uses another version.
inline constexpr int otherProtocolStatus = 3;

/// Whether the Nocta that started this helper, with these arguments, uses the same version.
inline bool isOfHelperProtocol(int argumentCount, char** arguments) {
    return argumentCount > 1 && std::string_view(arguments[argumentCount - 1]) == helperProtocol;
}

/// Lets a helper survive the signals that end a session. These signals also end Nocta, and then the
/// helper has to restore what Nocta has changed.
inline void outliveSession() {
    for (const auto signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) {
        std::signal(signal, SIG_IGN);
    }
    setsid();
}

} // namespace nocta
