#pragma once

#include <string_view>

namespace nocta {

/// The version of all that Nocta and its helper programs say to each other, given to each helper as
/// its last argument. To be raised with every change of it: a package may replace the helpers while
/// Nocta runs, and a helper of another version must end without an answer.
inline constexpr char helperProtocol[] = "1";

/// How such a helper ends.
inline constexpr int otherProtocolStatus = 3;

/// Whether the Nocta that has started this helper, with these arguments, is of its version.
inline bool isOfHelperProtocol(int argumentCount, char** arguments) {
    return argumentCount > 1 && std::string_view(arguments[argumentCount - 1]) == helperProtocol;
}

} // namespace nocta
