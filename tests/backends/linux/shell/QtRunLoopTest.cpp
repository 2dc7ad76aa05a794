#include "backends/linux/shell/QtRunLoop.h"

#include "contracts/RunLoopContract.h"
#include "support/EventLoop.h"

namespace nocta {

struct QtRunLoopHarness {
    QtRunLoop runLoop;

    static bool runUntil(const std::function<bool()>& condition) { return serveUntil(condition); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Qt, RunLoopContract, QtRunLoopHarness);

} // namespace nocta
