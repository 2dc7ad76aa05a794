#pragma once

#include <cstdlib>
#include <memory>

namespace nocta {

/// Frees memory that xcb has allocated.
struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

/// Owns a reply, event or error from xcb, or is null.
template <class Reply>
using XcbReply = std::unique_ptr<Reply, FreeDeleter>;

} // namespace nocta
