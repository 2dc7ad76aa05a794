#include "backends/linux/shell/QtApplication.h"

#include "backends/linux/shell/QtRunLoop.h"
#include "support/Process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace nocta {
namespace {

using namespace std::chrono_literals;

class Delegate final : public ApplicationDelegate {
public:
    std::string calls;
    std::function<void()> whenLaunched = [] {};
    std::function<void()> whenTerminating = [] {};

    void applicationDidFinishLaunching() override {
        calls += "launch ";
        whenLaunched();
    }
    void applicationDidReopen() override { calls += "reopen "; }
    void showPreferencesWindow() override { calls += "preferences "; }
    void applicationWillTerminate() override {
        calls += "terminate ";
        whenTerminating();
    }
};

class QtApplicationTest : public ::testing::Test {
protected:
    QtRunLoop runLoop;
    TemporaryFolder folder;
    SingleInstance instance{":0", folder.path()};
    bool hasTray = true;
    QtApplication application{runLoop, instance, [this] { return hasTray; }};
    Delegate delegate;
};

TEST_F(QtApplicationTest, RunsFromLaunchToTermination) {
    delegate.whenLaunched = [&] { application.terminate(); };
    EXPECT_EQ(application.run(delegate), 0);
    EXPECT_EQ(delegate.calls, "launch terminate ");
}

TEST_F(QtApplicationTest, FailureSetsTheExitStatus) {
    delegate.whenLaunched = [&] { application.fail(); };
    EXPECT_EQ(application.run(delegate), 1);
    EXPECT_EQ(delegate.calls, "launch terminate ");
}

TEST_F(QtApplicationTest, NoTimerFiresAfterTermination) {
    int ticks = 0;
    int ticksAtTheEnd = -1;
    Timer timer;
    delegate.whenLaunched = [&] {
        timer.start(runLoop, 1ms, Repeat::yes, [&] {
            if (++ticks == 3) {
                application.terminate();
            }
        });
    };
    delegate.whenTerminating = [&] {
        ticksAtTheEnd = ticks;
        runLoop.post([&] { ++ticks; });
    };
    application.run(delegate);
    EXPECT_EQ(ticks, ticksAtTheEnd);
    EXPECT_GE(ticks, 3);
}

TEST_F(QtApplicationTest, SecondStartReopensTheFirstInstance) {
    Timer later;
    delegate.whenLaunched = [&] {
        later.start(runLoop, 1ms, Repeat::no, [&] {
            const auto child = fork();
            if (child == 0) {
                const SingleInstance second(":0", folder.path());
                _exit(second.role() == SingleInstance::Role::answered ? 0 : 1);
            }
            later.start(runLoop, 5ms, Repeat::yes, [&, child] {
                int status = 0;
                if (waitpid(child, &status, WNOHANG) == child) {
                    EXPECT_EQ(status, 0);
                    application.terminate();
                }
            });
        });
    };
    application.run(delegate);
    EXPECT_EQ(delegate.calls, "launch reopen terminate ");
}

TEST_F(QtApplicationTest, ReopensOnceWithoutATray) {
    hasTray = false;
    Timer end;
    delegate.whenLaunched = [&] {
        end.start(runLoop, 2500ms, Repeat::no, [&] { application.terminate(); });
    };
    application.run(delegate);
    EXPECT_EQ(delegate.calls, "launch reopen terminate ");
}

TEST_F(QtApplicationTest, DoesNotReopenWithATray) {
    Timer end;
    delegate.whenLaunched = [&] {
        end.start(runLoop, 2500ms, Repeat::no, [&] { application.terminate(); });
    };
    application.run(delegate);
    EXPECT_EQ(delegate.calls, "launch terminate ");
}

TEST_F(QtApplicationTest, UnresponsiveFirstInstanceIsNotReplaced) {
    const SingleInstance second(":0", folder.path());
    EXPECT_EQ(second.role(), SingleInstance::Role::unanswered);
    instance.close();
    const SingleInstance third(":0", folder.path());
    EXPECT_EQ(third.role(), SingleInstance::Role::first);
}

} // namespace
} // namespace nocta
