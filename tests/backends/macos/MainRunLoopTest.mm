#include "backends/macos/MainRunLoop.h"

#include "contracts/RunLoopContract.h"

namespace nocta {

struct MainRunLoopHarness {
    MainRunLoop runLoop;

    static bool runUntil(const std::function<bool()>& condition) {
        NSDate* const deadline = [NSDate dateWithTimeIntervalSinceNow:30];
        while (!condition() && deadline.timeIntervalSinceNow > 0) {
            // In short turns: a timer does not end one.
            [NSRunLoop.mainRunLoop runMode:NSDefaultRunLoopMode
                                beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.001]];
        }
        return condition();
    }
};
INSTANTIATE_TYPED_TEST_SUITE_P(MacOs, RunLoopContract, MainRunLoopHarness);

} // namespace nocta
