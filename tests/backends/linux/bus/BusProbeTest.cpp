#include "backends/linux/bus/BusProbe.h"

#include "support/MuteBus.h"
#include "support/PrivateBus.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <random>
#include <string>

namespace nocta {
namespace {

using namespace std::chrono_literals;
using State = BusProbe::State;

TEST(BusProbe, RunningBusIsFound) {
    const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
    BusProbe probe(bus.address());
    EXPECT_EQ(probe.waitFor(10s), State::answered);
    EXPECT_EQ(probe.address(), bus.address());
}

TEST(BusProbe, AnswerIsRead) {
    const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
    BusProbe probe(bus.address(), {.interface = "org.freedesktop.DBus", .method = "GetId"});
    ASSERT_EQ(probe.waitFor(10s), State::answered);
    ASSERT_TRUE(probe.answer()->string());
    EXPECT_EQ(probe.answer()->string()->size(), 32U);
    EXPECT_FALSE(probe.answer()->booleanInVariant());

    BusProbe withArgument(bus.address(), {.interface = "org.freedesktop.DBus",
                                          .method = "GetNameOwner",
                                          .arguments = {"org.freedesktop.DBus"}});
    ASSERT_EQ(withArgument.waitFor(10s), State::answered);
    EXPECT_EQ(withArgument.answer()->string(), "org.freedesktop.DBus");
}

TEST(BusProbe, ErrorCountsAsAnAnswer) {
    const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
    BusProbe probe(bus.address(), {.service = "org.nobody.There"});
    EXPECT_EQ(probe.waitFor(10s), State::answered);
    EXPECT_TRUE(probe.answer()->isError());
}

TEST(BusProbe, SilentBusIsStillPendingAfterTheTimeout) {
    for (const auto after :
         {MuteBus::After::accepting, MuteBus::After::authentication, MuteBus::After::hello}) {
        const MuteBus bus(after);
        BusProbe probe(bus.address());
        EXPECT_EQ(probe.waitFor(50ms), State::pending) << static_cast<int>(after);
    }
}

TEST(BusProbe, SlowBusIsFound) {
    const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
    bus.signal(SIGSTOP);
    BusProbe probe(bus.address());
    EXPECT_EQ(probe.waitFor(20ms), State::pending);
    bus.signal(SIGCONT);
    EXPECT_EQ(probe.waitFor(10s), State::answered);
}

TEST(BusProbe, AddressWithoutABusFailsImmediately) {
    for (const auto* const address : {"", ";", "unix:", "unix:path=", "unix:path=/nonexistent/bus",
                                      "autolaunch:", "tcp:host=localhost,port=1",
                                      "unix:abstract=nobody-has-this-name", "nonsense"}) {
        EXPECT_EQ(BusProbe(address).state(), State::failed) << address;
    }
}

TEST(BusProbe, FirstWorkingAddressInTheListIsUsed) {
    const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
    auto escaped = bus.address();
    escaped.replace(escaped.rfind('_'), 1, "%5f");
    BusProbe probe("unix:path=/nonexistent/bus;" + escaped + ",guid=0;unix:path=/another");
    EXPECT_EQ(probe.waitFor(10s), State::answered);
    EXPECT_EQ(probe.address(), escaped + ",guid=0");
}

TEST(BusProbe, DefaultSocketIsUsedWithoutAnAddress) {
    const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
    const TemporaryFolder folder;
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);
    EXPECT_EQ(sessionBusAddress(), "");
    writeFile(folder.path() + "/bus", "no socket");
    EXPECT_EQ(sessionBusAddress(), "");
    unlink((folder.path() + "/bus").c_str());
    const auto socket = bus.address().substr(std::string("unix:path=").size());
    ASSERT_EQ(symlink(socket.c_str(), (folder.path() + "/bus").c_str()), 0);
    EXPECT_EQ(sessionBusAddress(), "unix:path=" + folder.path() + "/bus");
    unsetenv("XDG_RUNTIME_DIR");
    setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1);
}

TEST(BusMessage, CorruptedMessagesAreHandled) {
    const auto good = busCall(7, {.arguments = {"a", "bc"}});
    ASSERT_TRUE(BusMessage::read(good));
    EXPECT_FALSE(BusMessage::read(good)->isDamaged());
    EXPECT_EQ(BusMessage::read(good)->size(), good.size());
    EXPECT_FALSE(BusMessage::read(std::string_view(good).substr(0, good.size() - 1)));
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        auto bytes = good;
        for (auto changes = random() % 8; changes > 0; --changes) {
            bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        if (const auto message = BusMessage::read(bytes)) {
            EXPECT_LE(message->isDamaged() ? 0 : message->size(), bytes.size());
            message->string();
            message->booleanInVariant();
        }
    }
    EXPECT_TRUE(BusMessage::read(std::string(16, 'x'))->isDamaged());
}

} // namespace
} // namespace nocta
