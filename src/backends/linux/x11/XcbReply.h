#pragma once

#include <cstdlib>
#include <memory>

namespace nocta {

/// Releases what xcb handed out.
struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

/// A reply, event or error that xcb handed out; null where there was none.
template <class Reply>
using XcbReply = std::unique_ptr<Reply, FreeDeleter>;

} // namespace nocta
