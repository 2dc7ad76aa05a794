#include "ui/preferences/FeedbackPreferencesView.h"

#include "support/Face.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabBar>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace nocta {
namespace {

class FeedbackPreferencesViewTest : public Face {
protected:
    void SetUp() override { openTab(); }

    void openTab() {
        open(realViews.makePreferencesView());
        control<QTabBar>("preferencesTabs").setCurrentIndex(4);
    }
    /// Closes the window and opens it again.
    void reopenTab() {
        view.reset();
        openTab();
    }
    QPlainTextEdit& message() { return control<QPlainTextEdit>("messageField"); }
    nlohmann::json sentJson() { return nlohmann::json::parse(desktop.urlSession.waiting()->body); }

    QRect frameOf(const QWidget& part) const {
        return {part.mapTo(&widget(), QPoint()), part.size()};
    }
    /// Returns the space between a widget and the nearest visible text above it.
    int spaceAbove(const QWidget& part) const {
        int space = frameOf(part).top();
        for (const auto* const other : widget().findChildren<QWidget*>()) {
            const auto isPage = other->isAncestorOf(&part);
            const auto below = frameOf(part).top() - frameOf(*other).bottom();
            if (other->isVisible() && !isPage && below > 0) {
                space = std::min(space, below);
            }
        }
        return space;
    }
};

TEST_F(FeedbackPreferencesViewTest, TypedTextIsSent) {
    EXPECT_TRUE(shows("Help shape Nocta — share a suggestion, report a bug, or tell us what you "
                      "think."));
    EXPECT_EQ(message().placeholderText(), "What's on your mind?");
    EXPECT_FALSE(button("Send feedback").isEnabled());
    QTest::keyClicks(&message(), "Dark is good.");
    QTest::keyClicks(&control<QLineEdit>("Email (optional)"), "me@example.org");
    QTest::keyClick(&control<QComboBox>("Category"), Qt::Key_Down);
    EXPECT_EQ(control<QComboBox>("Category").currentText(), "Bug report");
    click("sendButton");
    EXPECT_EQ(sentJson(),
              (nlohmann::json{
                  {"message", "Dark is good."}, {"type", "bug"}, {"email", "me@example.org"}}));
    EXPECT_FALSE(button("sendButton").isVisible());
    EXPECT_TRUE(control("sendProgress").isVisible());
    desktop.urlSession.answer({.statusCode = 200});
    EXPECT_TRUE(shows("Thanks for your feedback!"));
    click("Send another");
    EXPECT_EQ(message().toPlainText(), "");
    EXPECT_TRUE(message().isVisible());
}

TEST_F(FeedbackPreferencesViewTest, FailureIsShownAndTheFormKeepsItsContent) {
    QTest::keyClicks(&message(), "Dark is good.");
    click("sendButton");
    desktop.urlSession.answer({.statusCode = 204});
    EXPECT_TRUE(shows("Failed to send. Please try again."));
    EXPECT_EQ(message().toPlainText(), "Dark is good.");
    click("sendButton");
    EXPECT_FALSE(shows("Failed to send. Please try again."));
    desktop.urlSession.answer({.error = "Host not found"});
    EXPECT_TRUE(shows("Host not found"));
}

TEST_F(FeedbackPreferencesViewTest, UnfinishedMessageIsKeptWhenTheWindowCloses) {
    QTest::keyClicks(&message(), "Half a thou");
    QTest::keyClicks(&control<QLineEdit>("emailField"), "me@example.org");
    QTest::keyClick(&control<QComboBox>("categoryPicker"), Qt::Key_Down);
    reopenTab();
    EXPECT_EQ(message().toPlainText(), "Half a thou");
    EXPECT_EQ(control<QLineEdit>("emailField").text(), "me@example.org");
    EXPECT_EQ(control<QComboBox>("categoryPicker").currentText(), "Bug report");
}

TEST_F(FeedbackPreferencesViewTest, ReopenedWindowDoesNotThankAgain) {
    QTest::keyClicks(&message(), "Dark is good.");
    click("sendButton");
    desktop.urlSession.answer({.statusCode = 200});
    EXPECT_TRUE(shows("Thanks for your feedback!"));
    reopenTab();
    EXPECT_FALSE(shows("Thanks for your feedback!"));
    EXPECT_TRUE(message().isVisible());
    EXPECT_EQ(message().toPlainText(), "");
    EXPECT_FALSE(button("sendButton").isEnabled());
}

TEST_F(FeedbackPreferencesViewTest, ReopenedWindowDoesNotShowAnEarlierError) {
    QTest::keyClicks(&message(), "Dark is good.");
    click("sendButton");
    desktop.urlSession.answer({.error = "Host not found"});
    EXPECT_TRUE(shows("Host not found"));
    reopenTab();
    EXPECT_FALSE(shows("Host not found"));
    EXPECT_EQ(message().toPlainText(), "Dark is good.");
    EXPECT_TRUE(button("sendButton").isEnabled());
}

TEST_F(FeedbackPreferencesViewTest, ChangingTheTabKeepsTheResult) {
    QTest::keyClicks(&message(), "Dark is good.");
    click("sendButton");
    desktop.urlSession.answer({.error = "Host not found"});
    control<QTabBar>("preferencesTabs").setCurrentIndex(0);
    control<QTabBar>("preferencesTabs").setCurrentIndex(4);
    EXPECT_TRUE(shows("Host not found"));
}

TEST_F(FeedbackPreferencesViewTest, ResponseWhileTheWindowIsClosedIsHandled) {
    QTest::keyClicks(&message(), "Dark is good.");
    click("sendButton");
    view.reset();
    desktop.urlSession.answer({.statusCode = 500});
    openTab();
    EXPECT_FALSE(shows("Failed to send. Please try again."));
    EXPECT_EQ(message().toPlainText(), "Dark is good.");
    click("sendButton");
    view.reset();
    desktop.urlSession.answer({.statusCode = 200});
    openTab();
    EXPECT_FALSE(shows("Thanks for your feedback!"));
    EXPECT_EQ(message().toPlainText(), "");
}

TEST_F(FeedbackPreferencesViewTest, ReopenedWindowShowsTheSendingAndItsResult) {
    QTest::keyClicks(&message(), "Dark is good.");
    for (const auto status : {500, 200}) {
        click("sendButton");
        reopenTab();
        EXPECT_TRUE(control("sendProgress").isVisible());
        EXPECT_FALSE(button("sendButton").isVisible());
        EXPECT_EQ(message().toPlainText(), "Dark is good.");
        desktop.urlSession.answer({.statusCode = status});
        EXPECT_FALSE(control("sendProgress").isVisible());
        EXPECT_EQ(shows("Failed to send. Please try again."), status != 200);
        EXPECT_EQ(shows("Thanks for your feedback!"), status == 200);
    }
    EXPECT_EQ(calls("dataTask").size(), 2U);
}

TEST_F(FeedbackPreferencesViewTest, EachLabelIsNearestToItsOwnField) {
    int labels = 0;
    for (const auto* const label : widget().findChildren<QLabel*>()) {
        if (label->isVisible() && label->buddy() != nullptr) {
            EXPECT_LE(2 * spaceAbove(*label->buddy()), spaceAbove(*label))
                << label->text().toStdString();
            ++labels;
        }
    }
    EXPECT_EQ(labels, 3);
}

class FeedbackWithoutAnAddressTest : public Face {
protected:
    static constexpr auto reason = "This build of Nocta has no address for feedback.";

    void openTab() {
        open(realViews.makePreferencesView());
        control<QTabBar>("preferencesTabs").setCurrentIndex(4);
    }
};

TEST_F(FeedbackWithoutAnAddressTest, NoteSaysSoAndSendingFails) {
    desktop.bundle.apiBase = {};
    openTab();
    EXPECT_TRUE(shows(reason));
    EXPECT_EQ(control<QLabel>("errorMessage").text(), "");
    EXPECT_EQ(button("sendButton").toolTip(), reason);
    QTest::keyClicks(&control<QPlainTextEdit>("messageField"), "Dark is good.");
    click("sendButton");
    EXPECT_TRUE(shows("Failed to prepare request"));
    EXPECT_TRUE(shows(reason));
    EXPECT_TRUE(calls("dataTask").empty());
}

TEST_F(FeedbackWithoutAnAddressTest, BuildWithAnAddressHasNoNote) {
    openTab();
    EXPECT_FALSE(shows(reason));
    EXPECT_EQ(button("sendButton").toolTip(), "");
}

} // namespace
} // namespace nocta
