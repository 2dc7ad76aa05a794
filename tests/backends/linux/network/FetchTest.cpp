// Tests what the program makes of a nocta-fetch that misbehaves. This program has a helper of that
// name next to it that runs a shell script.

#include "backends/linux/network/Fetch.h"

#include "backends/linux/shell/QtRunLoop.h"
#include "support/EventLoop.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <sys/wait.h>

namespace nocta {
namespace {

using namespace std::chrono_literals;

constexpr auto item = R"({"item":{"channel":"","edSignature":"","length":1,)"
                      R"("minimumSystemVersion":"","os":"","releaseNotes":"",)"
                      R"("shortVersionString":"1","url":"https://a/b.deb","version":"1"}})";

class FetchTest : public ::testing::Test {
protected:
    QtRunLoop runLoop;
    int items = 0;
    int ends = 0;
    Subscription task;

    /// Runs the script as the helper, and returns the last answer.
    FetchAnswer run(const std::string& script, std::chrono::milliseconds timeout = 20s) {
        setenv("all_proxy", script.c_str(), 1);
        std::optional<FetchAnswer> last;
        ends = items = 0;
        task = fetch(runLoop, {{"job", "feed"}}, timeout,
                     {.item = [this](const AppcastItem&) { ++items; },
                      .end =
                          [&](const FetchAnswer& answer) {
                              ++ends;
                              last = answer;
                          }});
        EXPECT_FALSE(last) << "the answer should come from the run loop";
        EXPECT_TRUE(serveUntil([&] { return last.has_value(); }));
        QCoreApplication::processEvents();
        EXPECT_EQ(ends, 1);
        siginfo_t child{};
        EXPECT_TRUE(waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) != 0 && errno == ECHILD)
            << "the helper should not exist anymore";
        return last.value_or(FetchEnd{});
    }
    void expectBroken(const std::string& script) {
        EXPECT_EQ(run(script), FetchAnswer(FetchFailure{FetchError::broken})) << script;
    }
    static std::string say(const std::string& line) { return "echo '" + line + "'; "; }
};

TEST_F(FetchTest, AnswersArriveInOrder) {
    EXPECT_EQ(run(say(item) + say(item) + say(R"({"end":0})")), FetchAnswer(FetchEnd{}));
    EXPECT_EQ(items, 2);
    EXPECT_EQ(run("printf '{\"status\"'; sleep 0.1; " + say(":204}")),
              FetchAnswer(FetchStatus{204}));
}

TEST_F(FetchTest, NothingCountsAfterTheLastAnswer) {
    EXPECT_EQ(run(say(R"({"end":0})") + say(item) + say(R"({"status":200})") + "sleep 60"),
              FetchAnswer(FetchEnd{}));
    EXPECT_EQ(items, 0);
}

TEST_F(FetchTest, HelperThatDiesHasFailed) {
    expectBroken("exit 0");
    expectBroken("kill -9 $$");
    expectBroken(say(item) + "kill -9 $$");
    expectBroken("printf '{\"end\":0}'"); // not a whole line
}

TEST_F(FetchTest, AnswerThatIsNotInTheProtocolHasFailed) {
    expectBroken(say("hello") + "sleep 60");
    expectBroken(say(R"({"end":0,"more":1})") + "sleep 60");
    expectBroken("printf '\\n'; sleep 60");
    expectBroken("head -c 65536 /dev/zero; sleep 60");
    expectBroken("head -c 65535 /dev/zero; echo; sleep 60");
}

TEST_F(FetchTest, AnswerWithoutAHandlerHasFailed) {
    expectBroken(say(R"({"received":1})") + say(R"({"end":0})") + "sleep 60");
}

TEST_F(FetchTest, EndlessAnswersHaveFailed) {
    expectBroken(std::string("while :; do ") + say(item) + "done");
    EXPECT_LT(items, 10'000);
    expectBroken("while :; do echo 'x'; done");
}

TEST_F(FetchTest, HelperSeesOnlyTheProxySettingsOfTheEnvironment) {
    setenv("SECRET", "token", 1);
    setenv("no_proxy", "localhost", 1);
    EXPECT_EQ(
        run("[ \"$SECRET\" = '' ] && [ \"$no_proxy\" = localhost ] && " + say(R"({"end":0})")),
        FetchAnswer(FetchEnd{}));
    unsetenv("no_proxy");
}

TEST_F(FetchTest, SilentHelperTimesOut) {
    EXPECT_EQ(run("sleep 60", 200ms), FetchAnswer(FetchFailure{FetchError::timedOut}));
    EXPECT_EQ(run(say(item) + "sleep 60", 200ms), FetchAnswer(FetchFailure{FetchError::timedOut}));
}

TEST_F(FetchTest, HandlersMayCancelTheTask) {
    setenv("all_proxy", (say(item) + say(item) + say(R"({"end":0})")).c_str(), 1);
    task = fetch(runLoop, {{"job", "feed"}}, 20s,
                 {.item =
                      [this](const AppcastItem&) {
                          ++items;
                          task.cancel();
                      },
                  .end = [this](const FetchAnswer&) { ++ends; }});
    EXPECT_TRUE(serveUntil([this] { return items > 0; }));
    EXPECT_EQ(run("exit 0"), FetchAnswer(FetchFailure{FetchError::broken}));
    EXPECT_EQ(items, 0);
}

TEST_F(FetchTest, EveryErrorHasAText) {
    for (unsigned error = 0; error < static_cast<unsigned>(FetchError::count); ++error) {
        EXPECT_NE(textOf({static_cast<FetchError>(error), 0}), "") << error;
    }
    EXPECT_EQ(textOf({FetchError::status, 404}), "The server answered with an error: 404");
    EXPECT_EQ(textOf({FetchError::fileNotSaved, ENOSPC}),
              "The file cannot be saved: No space left on device");
    EXPECT_EQ(textOf({FetchError::feedTooLong, 3}), "The feed is too long");
}

} // namespace
} // namespace nocta
