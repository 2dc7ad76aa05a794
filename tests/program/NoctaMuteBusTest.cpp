#include "support/EventLoop.h"
#include "support/MuteBus.h"
#include "support/NoctaProcess.h"
#include "support/PrivateBus.h"
#include "support/SettingsPortal.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QLibraryInfo>
#include <QVersionNumber>

#include <chrono>
#include <csignal>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <sys/wait.h>
#include <vector>

// Tests with message buses and bus services that accept every message and never answer. Qt would
// block for 25 seconds on most calls, and forever on some.

namespace nocta {
namespace {

using namespace std::chrono_literals;

/// A service that owns the given names, and answers only the methods in `answers`.
class MuteService final : public QDBusVirtualObject {
public:
    MuteService(const PrivateBus& bus, const std::vector<QString>& names)
        : bus_(QDBusConnection::connectToBus(QString::fromStdString(bus.address()), "mute")) {
        EXPECT_TRUE(bus_.registerVirtualObject("/", this, QDBusConnection::SubPath));
        for (const auto& name : names) {
            EXPECT_TRUE(bus_.registerService(name));
        }
    }
    MuteService(const MuteService&) = delete;
    MuteService& operator=(const MuteService&) = delete;
    ~MuteService() override { QDBusConnection::disconnectFromBus("mute"); }

    std::map<QString, QVariant> answers; ///< keyed by method
    int questions = 0;
    bool hasItem = false;

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        ++questions;
        hasItem = hasItem || message.member() == "RegisterStatusNotifierItem";
        const auto answer = answers.find(message.member());
        return answer == answers.end() || bus.send(message.createReply(answer->second));
    }
    QString introspect(const QString& /*path*/) const override { return {}; }

private:
    QDBusConnection bus_;
};

class NoctaMuteBusTest : public NoctaProcess {
protected:
    /// Much longer than a launch takes, and much shorter than the time that Qt would block.
    static constexpr auto hang = 10s;

    Process::Environment variables = environment();

    void startWithVariables() {
        nocta =
            std::make_unique<Process>(std::vector{programFolder() + "/nocta"}, variables, output);
    }

    static bool isInTime(const std::function<bool()>& condition) {
        const QDeadlineTimer deadline(hang);
        return serveUntil([&] { return condition() || deadline.hasExpired(); }) && condition();
    }

    void expectKeyToSetBrightness(double brightness) {
        client.press(brightnessDownSymbol);
        EXPECT_TRUE(isInTime([&] { return shows(brightness); })) << brightness << contentOf(output);
    }

    bool showsPopover() { return client.windowsOfSize(300, 280).size() == 1; }

    void expectPromptExit() {
        nocta->signal(SIGTERM);
        EXPECT_TRUE(isInTime([&] { return isZombie(nocta->id()); }));
        const auto status = nocta->wait();
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << contentOf(output);
        EXPECT_TRUE(isGivenBack());
    }

    /// Launches the program, presses keys, waits for the popover (which opens because there is no
    /// tray), starts the program again, and quits.
    void expectNormalUse() {
        startWithVariables();
        EXPECT_TRUE(isInTime([&] { return shows(0.75); })) << contentOf(output);
        expectKeyToSetBrightness(0.6875);
        EXPECT_TRUE(isInTime([&] { return showsPopover(); })) << contentOf(output);
        expectKeyToSetBrightness(0.625);
        Process second({programFolder() + "/nocta"}, variables);
        EXPECT_TRUE(isInTime([&] { return isZombie(second.id()); }));
        EXPECT_EQ(second.wait(), 0) << "the first instance should answer a second start";
        expectKeyToSetBrightness(0.5625);
        expectPromptExit();
    }
};
const auto everyStage = {MuteBus::After::accepting, MuteBus::After::authentication,
                         MuteBus::After::hello};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaMuteBusTest, ::testing::Values(XServer::Kind::xvfb),
                         serverName);

TEST_P(NoctaMuteBusTest, MuteBusesDoNotBlockTheProgram) {
    // On KDE, Qt's theme uses the session bus from the start.
    variables.insert({{"XDG_CURRENT_DESKTOP", "KDE"},
                      {"KDE_FULL_SESSION", "true"},
                      {"KDE_SESSION_VERSION", "5"}});
    for (const auto after : everyStage) {
        SCOPED_TRACE(static_cast<int>(after));
        const MuteBus bus(after);
        variables["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
        variables["DBUS_SYSTEM_BUS_ADDRESS"] = bus.address();
        writeFile(settings, neutralSettings());
        expectNormalUse();
    }
}

TEST_P(NoctaMuteBusTest, BusesThatAnswerOnlyTheFirstClientDoNotBlockTheProgram) {
    for (const auto after : everyStage) {
        SCOPED_TRACE(static_cast<int>(after));
        const MuteBus session(after, 1);
        const MuteBus system(after, 1);
        variables["DBUS_SESSION_BUS_ADDRESS"] = session.address();
        variables["DBUS_SYSTEM_BUS_ADDRESS"] = system.address();
        writeFile(settings, neutralSettings());
        expectNormalUse();
    }
}

TEST_P(NoctaMuteBusTest, MissingAddressDoesNotBlockTheProgram) {
    variables["DBUS_SESSION_BUS_ADDRESS"] = "";
    variables["DBUS_SYSTEM_BUS_ADDRESS"] = "";
    expectNormalUse();
}

TEST_P(NoctaMuteBusTest, MuteAccessibilityBusDoesNotBlockTheProgram) {
    const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
    variables["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    for (const auto after : everyStage) {
        SCOPED_TRACE(static_cast<int>(after));
        const MuteBus readers(after);
        writeFile(settings, neutralSettings());
        MuteService service(bus, {"org.a11y.Bus"});
        service.answers["Get"] = QVariant::fromValue(QDBusVariant(true));
        service.answers["GetAddress"] = QString::fromStdString(readers.address());
        expectNormalUse();
        EXPECT_GT(service.questions, 0);
        client.setRootText("AT_SPI_BUS", readers.address());
        writeFile(settings, neutralSettings());
        service.answers["Get"] = QVariant::fromValue(QDBusVariant(false));
        expectNormalUse();
        client.setRootText("AT_SPI_BUS", "");
    }
}

TEST_P(NoctaMuteBusTest, MuteServicesDoNotBlockTheProgram) {
    const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
    variables["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    client.becomeSystemTray(); // Qt calls the watcher even if the icon is in this tray
    const MuteService services(bus,
                               {"org.kde.StatusNotifierWatcher", "org.a11y.Bus",
                                "org.freedesktop.portal.Desktop", "org.freedesktop.Notifications"});
    expectNormalUse();
    EXPECT_GT(services.questions, 0);
}

TEST_P(NoctaMuteBusTest, TrayWatcherThatAnswersOneCallDoesNotBlockTheProgram) {
    const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
    variables["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    for (const auto* const method : {"Get", "Introspect"}) {
        SCOPED_TRACE(method);
        MuteService watcher(bus, {"org.kde.StatusNotifierWatcher"});
        watcher.answers[method] = QVariant::fromValue(QDBusVariant(true));
        writeFile(settings, neutralSettings());
        expectNormalUse();
        EXPECT_GT(watcher.questions, 0);
    }
}

TEST_P(NoctaMuteBusTest, MuteInputMethodDoesNotBlockTheProgram) {
    const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
    variables["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    variables["QT_IM_MODULE"] = "ibus";
    variables["IBUS_USE_PORTAL"] = "1";
    const MuteService service(bus, {"org.freedesktop.portal.IBus"});
    expectNormalUse();
    EXPECT_GT(service.questions, 0);
}

TEST_P(NoctaMuteBusTest, BusThatAnswersLateIsUsedOnceItAnswers) {
    const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
    variables["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    SettingsPortal portal(bus);
    portal.settings["org.freedesktop.appearance"]["color-scheme"] = 1U;
    MuteService watcher(bus, {"org.kde.StatusNotifierWatcher"});
    watcher.answers["Get"] = QVariant::fromValue(QDBusVariant(true));
    watcher.answers["Introspect"] =
        QString("<node><interface name=\"org.kde.StatusNotifierWatcher\"><property "
                "name=\"IsStatusNotifierHostRegistered\" type=\"b\" access=\"read\"/>"
                "</interface></node>");
    bus.signal(SIGSTOP);
    startWithVariables();
    EXPECT_TRUE(isInTime([&] { return shows(0.75); })) << contentOf(output);
    EXPECT_TRUE(isInTime([&] { return showsPopover(); }));
    const auto blue = [&] { return client.pixel(client.topWindows().back().id, 4, 4) & 0xFF; };
    EXPECT_TRUE(isInTime([&] { return blue() >= 0xE0; }));
    bus.signal(SIGCONT);
    EXPECT_TRUE(isInTime([&] { return blue() <= 0x30; }))
        << "windows should turn dark, because the user prefers dark colors";
    // Since 6.8, Qt looks for the bus only on launch, so the icon does not appear until the next
    // launch.
    if (QLibraryInfo::version() < QVersionNumber(6, 8)) {
        EXPECT_TRUE(isInTime([&] { return watcher.hasItem; }))
            << "the icon should appear in the tray";
    }
    expectPromptExit();
}

TEST_P(NoctaMuteBusTest, SignalEndsTheProgramWhileTheLoopIsBlocked) {
    startAndWaitFor(0.75);
    const auto guardians = guardiansOf(nocta->id());
    ASSERT_EQ(guardians.size(), 1U);
    server.freeze();
    kill(guardians[0], SIGKILL); // its replacement cannot start until the server answers
    EXPECT_TRUE(waitUntil([&] { return guardiansOf(nocta->id()).empty(); }));
    nocta->signal(SIGTERM);
    EXPECT_TRUE(isInTime([&] { return isZombie(nocta->id()); }));
    const auto status = nocta->wait();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
}

TEST_P(NoctaMuteBusTest, SignalEndsASecondInstanceThatGetsNoAnswer) {
    startAndWaitFor(0.75);
    nocta->signal(SIGSTOP);
    Process second({programFolder() + "/nocta"}, variables, output);
    EXPECT_TRUE(waitUntil(
        [&] { return contentOf("/proc/" + std::to_string(second.id()) + "/comm") == "nocta\n"; }));
    second.signal(SIGTERM);
    const auto status = second.wait();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << contentOf(output);
}

TEST_P(NoctaMuteBusTest, LowLimitOnOpenFilesIsReportedInOneLine) {
    const TemporaryFolder folder;
    for (int limit = 8; limit < 16; ++limit) {
        const auto text = std::to_string(limit);
        const auto file = folder.path() + "/" + text;
        Process start(
            {"bash", "-c", "ulimit -n " + text + "; exec '" + programFolder() + "/nocta'"},
            variables, file);
        EXPECT_EQ(start.wait(), 1 << 8) << limit;
        EXPECT_EQ(contentOf(file), "nocta: the limit on open files is below 64\n") << limit;
    }
}

} // namespace
} // namespace nocta
