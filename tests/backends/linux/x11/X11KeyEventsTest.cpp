#include "backends/linux/x11/X11Session.h"
#include "contracts/KeyEventsContract.h"
#include "support/Process.h"

#include <chrono>

namespace nocta {

INSTANTIATE_TYPED_TEST_SUITE_P(X11, KeyEventsContract, X11Harness);

namespace {

TEST(X11KeyEvents, RemappedKeyboardIsDetected) {
    X11Harness harness; // maps the two symbols to free keys on the first press
    std::vector<std::int64_t> keys;
    const auto tap = harness.keyEvents().createKeyDownTap(
        [&](const KeyDownEvent& event) { keys.push_back(event.keyCode); });
    harness.pressBrightnessUp();
    harness.pressBrightnessDown();
    EXPECT_EQ(keys, (std::vector<std::int64_t>{145, 144}));
}

TEST(X11KeyEvents, HeldKeyRepeatsAtTheKeyboardsRateUntilItIsReleased) {
    X11Harness harness;
    harness.pressBrightnessUp(); // maps the two symbols to free keys
    harness.pressBrightnessDown();
    ASSERT_EQ(runToEnd({"xset", "-display", harness.server.display(), "r", "rate", "50", "100"}),
              0);
    int heard = 0;
    const auto tap = harness.keyEvents().createKeyDownTap([&](const KeyDownEvent& event) {
        EXPECT_EQ(event.keyCode, 144);
        ++heard;
    });
    harness.client.hold(brightnessDownSymbol);
    EXPECT_TRUE(serveUntil([&] { return heard == 5; }));
    harness.client.release(brightnessDownSymbol);
    harness.pressBrightnessDown(); // this press arrives after the release
    const auto whenReleased = heard;
    bool passed = false;
    Timer timer;
    timer.start(harness.runLoop, std::chrono::milliseconds(200), Repeat::no,
                [&] { passed = true; });
    ASSERT_TRUE(serveUntil([&] { return passed; }));
    EXPECT_EQ(heard, whenReleased);
}

TEST(X11KeyEvents, HeldKeyDoesNotRepeatIfKeyRepeatIsOff) {
    X11Harness harness;
    harness.pressBrightnessUp();
    harness.pressBrightnessDown();
    ASSERT_EQ(runToEnd({"xset", "-display", harness.server.display(), "r", "rate", "20", "100"}),
              0);
    ASSERT_EQ(runToEnd({"xset", "-display", harness.server.display(), "r", "off"}), 0);
    int heard = 0;
    const auto tap = harness.keyEvents().createKeyDownTap([&](const KeyDownEvent&) { ++heard; });
    harness.client.hold(brightnessUpSymbol);
    bool passed = false;
    Timer timer;
    timer.start(harness.runLoop, std::chrono::milliseconds(200), Repeat::no,
                [&] { passed = true; });
    ASSERT_TRUE(serveUntil([&] { return passed; }));
    harness.client.release(brightnessUpSymbol);
    EXPECT_EQ(heard, 1);
}

TEST(X11KeyEvents, OtherKeysAreIgnored) {
    X11Harness harness;
    std::vector<std::int64_t> keys;
    const auto tap = harness.keyEvents().createKeyDownTap(
        [&](const KeyDownEvent& event) { keys.push_back(event.keyCode); });
    harness.client.press('a');
    harness.client.press(0x1008FF13); // volume up
    harness.pressBrightnessUp();
    EXPECT_EQ(keys, std::vector<std::int64_t>{145});
}

} // namespace
} // namespace nocta
