#include "backends/linux/bus/FreedesktopNotifications.h"

#include "backends/linux/bus/MessageBus.h"
#include "contracts/UserNotificationCenterContract.h"
#include "support/Dunst.h"
#include "support/EventLoop.h"
#include "support/PrivateBus.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QVariantMap>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nocta {
namespace {

const auto serviceName = QStringLiteral("org.freedesktop.Notifications");

QDBusMessage signalOf(const QString& name) {
    return QDBusMessage::createSignal("/org/freedesktop/Notifications", serviceName, name);
}

/// A mock notification service. It records every call; a test sets which calls the service answers.
class MockService final : public QDBusVirtualObject {
public:
    explicit MockService(const PrivateBus& bus)
        : bus_(QDBusConnection::connectToBus(QString::fromStdString(bus.address()),
                                             "mock-notifications")) {
        EXPECT_TRUE(bus_.registerVirtualObject("/org/freedesktop/Notifications", this));
        EXPECT_TRUE(bus_.registerService(serviceName));
    }
    MockService(const MockService&) = delete;
    MockService& operator=(const MockService&) = delete;
    ~MockService() override { QDBusConnection::disconnectFromBus("mock-notifications"); }

    QVariant capabilities = QStringList{"actions", "body"};
    bool answers = true;
    bool answersNotify = true;
    unsigned int nextId = 1;
    int questions = 0; ///< the number of requests for the capabilities
    std::vector<QVariantList> shown;

    void invoke(unsigned int id, const QString& action) {
        bus_.send(signalOf("ActionInvoked") << id << action);
    }
    void close(unsigned int id) { bus_.send(signalOf("NotificationClosed") << id << 1U); }
    void answerNotify() { bus_.send(waiting_.createReply(nextId)); }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.member() == "Settle") {
            return bus.send(message.createReply());
        }
        if (message.member() == "GetCapabilities") {
            ++questions;
            return !answers || bus.send(message.createReply(capabilities));
        }
        EXPECT_EQ(message.member(), "Notify");
        EXPECT_EQ(message.signature(), "susssasa{sv}i");
        shown.push_back(message.arguments());
        waiting_ = message;
        return !answersNotify || bus.send(message.createReply(nextId++));
    }
    QString introspect(const QString& /*path*/) const override { return {}; }

private:
    QDBusConnection bus_;
    QDBusMessage waiting_;
};

/// Returns once the service and the program have processed all messages from each other.
void settle() {
    const auto answer = sessionBus().call(
        QDBusMessage::createMethodCall(serviceName, "/org/freedesktop/Notifications",
                                       "org.example.Test", "Settle"),
        QDBus::BlockWithGui);
    ASSERT_EQ(answer.type(), QDBusMessage::ReplyMessage);
    QCoreApplication::processEvents();
}

} // namespace

class FreedesktopNotificationsHarness {
public:
    UserNotificationCenter& center() { return center_; }
    std::vector<std::vector<std::string>> shown() const {
        std::vector<std::vector<std::string>> shown;
        for (const auto& call : service_.shown) {
            auto& texts = shown.emplace_back(std::vector<std::string>{
                call[3].toString().toStdString(), call[4].toString().toStdString()});
            const auto actions = call[5].toStringList(); // identifiers and titles, alternating
            for (qsizetype title = 1; title < actions.size(); title += 2) {
                texts.push_back(actions[title].toStdString());
            }
        }
        return shown;
    }
    void press(std::size_t index, const std::string& actionIdentifier) {
        service_.invoke(static_cast<unsigned int>(index) + 1,
                        QString::fromStdString(actionIdentifier));
    }
    void deny() { service_.capabilities = 7; } // not a list, so not a valid answer
    static void settle() {
        constexpr int maxSteps = 4; // showing a notification takes at most 4 round trips
        for (int step = 0; step < maxSteps; ++step) {
            nocta::settle();
        }
    }

private:
    PrivateBus bus_{"DBUS_SESSION_BUS_ADDRESS"};
    MockService service_{bus_};
    FreedesktopNotifications center_;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Freedesktop, UserNotificationCenterContract,
                               FreedesktopNotificationsHarness);

namespace {

class FreedesktopNotificationsTest : public ::testing::Test, public UserNotificationCenterDelegate {
protected:
    using Answer = std::pair<bool, std::optional<std::string>>;

    std::optional<PrivateBus> bus{"DBUS_SESSION_BUS_ADDRESS"};
    std::optional<MockService> service;
    std::optional<FreedesktopNotifications> center;
    std::uint32_t presentation = notificationBanner | notificationSound;
    std::vector<std::string> responses;
    std::vector<Answer> answers;
    const UserNotification reminder{
        .title = "Time to rest", .body = "Tea & <b>biscuits</b>", .categoryIdentifier = "REST"};

    void SetUp() override { service.emplace(*bus); }

    void makeCenter() {
        center.emplace();
        center->setDelegate(this);
        center->setNotificationCategories(
            {{.identifier = "OTHER", .actions = {{"NO", "No"}}},
             {.identifier = "REST",
              .actions = {{"LEAVE_OUT", "Leave out"}, {"LATER", "In 5 minutes"}}}});
    }
    void request() {
        center->requestAuthorization(notificationAlert,
                                     [this](bool granted, const std::optional<std::string>& error) {
                                         answers.emplace_back(granted, error);
                                     });
    }
    /// Shows the reminder, and returns once the program has received its ID from the service.
    void show() {
        const auto before = service->shown.size();
        center->add(reminder);
        ASSERT_TRUE(serveUntil([&] { return service->shown.size() == before + 1; }));
        settle();
    }
    bool waitForResponse() {
        return serveUntil([this] { return !responses.empty(); });
    }

    std::uint32_t willPresentNotification() override { return presentation; }
    void didReceiveResponse(std::string_view actionIdentifier,
                            const std::function<void()>& completionHandler) override {
        responses.emplace_back(actionIdentifier);
        completionHandler();
    }
};

TEST_F(FreedesktopNotificationsTest, ServiceWithoutButtonSupportIsAuthorizedAndGetsNoButtons) {
    service->capabilities = QStringList{"body"};
    makeCenter();
    request();
    ASSERT_TRUE(serveUntil([&] { return !answers.empty(); }));
    EXPECT_EQ(answers, (std::vector{Answer{true, std::nullopt}}));
    show();
    EXPECT_EQ(service->shown.at(0).at(5).toStringList(), QStringList());
}

TEST_F(FreedesktopNotificationsTest, AuthorizationFailsWithoutAService) {
    service.reset();
    makeCenter();
    request();
    ASSERT_TRUE(serveUntil([&] { return !answers.empty(); }));
    EXPECT_EQ(answers, (std::vector{Answer{false, "this desktop has no notification service"}}));
}

TEST_F(FreedesktopNotificationsTest, AuthorizationFailsWithoutABus) {
    service.reset();
    bus.reset();
    ASSERT_TRUE(serveUntil([] { return !sessionBus().isConnected(); }));
    makeCenter();
    request();
    center->add(reminder);
    EXPECT_TRUE(answers.empty());
    ASSERT_TRUE(serveUntil([&] { return !answers.empty(); }));
    EXPECT_EQ(
        answers,
        (std::vector{Answer{false, "there is no session bus to reach a notification service"}}));
}

TEST_F(FreedesktopNotificationsTest, LosingTheBusBeforeTheAnswerIsAnError) {
    service->answers = false;
    makeCenter();
    request();
    center->add(reminder);
    ASSERT_TRUE(serveUntil([&] { return service->questions == 2; }));
    bus.reset();
    ASSERT_TRUE(serveUntil([&] { return !answers.empty(); }));
    EXPECT_FALSE(answers[0].first);
    EXPECT_EQ(answers[0].second.value().find("the notification service does not answer: "), 0U);
    EXPECT_EQ(answers.size(), 1U);
}

TEST_F(FreedesktopNotificationsTest, ServiceExitBeforeTheAnswerIsAOneLineError) {
    service->answers = false;
    makeCenter();
    request();
    ASSERT_TRUE(serveUntil([&] { return service->questions == 1; }));
    service.reset();
    ASSERT_TRUE(serveUntil([&] { return !answers.empty(); }));
    EXPECT_FALSE(answers[0].first);
    EXPECT_EQ(answers[0].second.value().find("the notification service does not answer: "), 0U);
    EXPECT_EQ(answers[0].second.value().find('\n'), std::string::npos);
}

TEST_F(FreedesktopNotificationsTest, AnswerOfTheWrongTypeIsAnError) {
    service->capabilities = 7;
    makeCenter();
    request();
    center->add(reminder);
    ASSERT_TRUE(serveUntil([&] { return !answers.empty(); }));
    EXPECT_FALSE(answers[0].first);
    EXPECT_TRUE(answers[0].second.has_value());
    settle();
    EXPECT_TRUE(service->shown.empty());
}

TEST_F(FreedesktopNotificationsTest, ShowsTheTextAndTheButtonsOfTheCategory) {
    makeCenter();
    show();
    const auto& call = service->shown.at(0);
    EXPECT_EQ(call[0], "Nocta");
    EXPECT_EQ(call[1], 0U) << "the notification should not replace another one";
    EXPECT_EQ(call[3], "Time to rest");
    EXPECT_EQ(call[4], "Tea & <b>biscuits</b>");
    EXPECT_EQ(call[5].toStringList(),
              (QStringList{"LEAVE_OUT", "Leave out", "LATER", "In 5 minutes"}));
    EXPECT_EQ(qdbus_cast<QVariantMap>(call[6]),
              (QVariantMap{{"desktop-entry", "nocta"}, {"sound-name", "message-new-instant"}}));
    EXPECT_EQ(call[7], -1);
}

TEST_F(FreedesktopNotificationsTest, TextIsNotInterpretedAsMarkup) {
    service->capabilities = QStringList{"actions", "body", "body-markup"};
    makeCenter();
    show();
    EXPECT_EQ(service->shown.at(0)[4], "Tea &amp; &lt;b&gt;biscuits&lt;/b&gt;");
}

TEST_F(FreedesktopNotificationsTest, NotificationIsShownAsTheDelegateRequests) {
    makeCenter();
    presentation = notificationAlert;
    show();
    EXPECT_FALSE(qdbus_cast<QVariantMap>(service->shown.at(0)[6]).contains("sound-name"));

    presentation = notificationSound;
    center->add(reminder);
    center->setDelegate(nullptr);
    center->add(reminder);
    settle();
    EXPECT_EQ(service->questions, 1)
        << "the service should not be queried for a notification that is not shown";
    EXPECT_EQ(service->shown.size(), 1U);
}

TEST_F(FreedesktopNotificationsTest, AnswerRightAfterTheIdIsDelivered) {
    service->answersNotify = false;
    makeCenter();
    center->add(reminder);
    ASSERT_TRUE(serveUntil([&] { return !service->shown.empty(); }));
    service->answerNotify();
    service->invoke(1, "LATER");
    ASSERT_TRUE(waitForResponse());
    EXPECT_EQ(responses, std::vector<std::string>{"LATER"});
}

TEST_F(FreedesktopNotificationsTest, NotificationsOfOtherProgramsAreIgnored) {
    makeCenter();
    show();
    service->invoke(2, "LATER");
    service->close(2);
    service->invoke(1, "LEAVE_OUT");
    ASSERT_TRUE(waitForResponse());
    EXPECT_EQ(responses, std::vector<std::string>{"LEAVE_OUT"});
}

TEST_F(FreedesktopNotificationsTest, ClosedNotificationIsForgotten) {
    makeCenter();
    show();
    show();
    service->close(1);
    service->invoke(1, "LATER");
    service->invoke(2, "LEAVE_OUT");
    ASSERT_TRUE(waitForResponse());
    EXPECT_EQ(responses, std::vector<std::string>{"LEAVE_OUT"});
}

TEST_F(FreedesktopNotificationsTest, OnlyTheServiceCanAnswer) {
    makeCenter();
    show();
    auto intruder =
        QDBusConnection::connectToBus(QString::fromStdString(bus->address()), "an intruder");
    const auto us = sessionBus().baseService();
    for (const auto& receiver : {QString(), us}) { // a broadcast and a direct message
        auto signal =
            receiver.isEmpty()
                ? signalOf("ActionInvoked")
                : QDBusMessage::createTargetedSignal(receiver, "/org/freedesktop/Notifications",
                                                     serviceName, "ActionInvoked");
        intruder.send(signal << 1U << "LATER");
    }
    // Once this returns, the bus has delivered all earlier messages.
    intruder.interface()->isServiceRegistered(us);
    service->invoke(1, "LEAVE_OUT");
    ASSERT_TRUE(waitForResponse());
    EXPECT_EQ(responses, std::vector<std::string>{"LEAVE_OUT"});
    QDBusConnection::disconnectFromBus("an intruder");
}

TEST_F(FreedesktopNotificationsTest, NotificationsOfAnExitedServiceAreForgotten) {
    makeCenter();
    show();
    service.reset();
    service.emplace(*bus);
    service->invoke(1, "LATER"); // the ID now belongs to another program
    settle();
    EXPECT_TRUE(responses.empty());
    EXPECT_TRUE(service->shown.empty());

    show();
    service->invoke(1, "LEAVE_OUT");
    ASSERT_TRUE(waitForResponse());
    EXPECT_EQ(responses, std::vector<std::string>{"LEAVE_OUT"});
}

TEST_F(FreedesktopNotificationsTest, NotificationIsNotResentAfterTheServiceExits) {
    service->answersNotify = false;
    makeCenter();
    center->add(reminder);
    ASSERT_TRUE(serveUntil([&] { return !service->shown.empty(); }));
    service.reset();
    service.emplace(*bus);
    request();
    ASSERT_TRUE(serveUntil([&] { return !answers.empty(); }));
    EXPECT_EQ(answers, (std::vector{Answer{true, std::nullopt}}));
    settle();
    EXPECT_TRUE(service->shown.empty());
}

TEST_F(FreedesktopNotificationsTest, SignalsWithInvalidArgumentsAreIgnored) {
    makeCenter();
    show();
    auto bare = signalOf("ActionInvoked") << 1U;
    auto wrong = signalOf("ActionInvoked") << "1"
                                           << "LATER";
    for (const auto& signal : {bare, wrong}) {
        QDBusConnection("mock-notifications").send(signal);
    }
    service->invoke(1, "LEAVE_OUT");
    ASSERT_TRUE(waitForResponse());
    EXPECT_EQ(responses, std::vector<std::string>{"LEAVE_OUT"});
}

TEST_F(FreedesktopNotificationsTest, NoCallbackRunsAfterDestruction) {
    service->answers = false;
    makeCenter();
    request();
    ASSERT_TRUE(serveUntil([&] { return service->questions == 1; }));
    service->answers = true;
    center->add(reminder);
    ASSERT_TRUE(serveUntil([&] { return service->shown.size() == 1; }));
    center.reset();
    service->invoke(1, "LATER");
    settle();
    service.reset(); // the bus then replies to the call with an error
    QCoreApplication::processEvents();
    EXPECT_TRUE(responses.empty());
    EXPECT_TRUE(answers.empty());
}

/// Tests with a real notification daemon.
class NotificationDaemonTest : public FreedesktopNotificationsTest {
protected:
    void SetUp() override {}
};

TEST_F(NotificationDaemonTest, PressedButtonIsReportedToTheDelegate) {
    const Dunst dunst(bus->address(), "minutes");

    makeCenter();
    request();
    ASSERT_TRUE(serveUntil([&] { return !answers.empty(); }));
    EXPECT_EQ(answers, (std::vector{Answer{true, std::nullopt}}));
    center->add(reminder);
    ASSERT_TRUE(serveUntil([] { return Dunst::displayed() == 1; }));
    ASSERT_TRUE(dunst.press());
    ASSERT_TRUE(waitForResponse());
    EXPECT_EQ(responses, std::vector<std::string>{"LATER"});
}

} // namespace
} // namespace nocta
