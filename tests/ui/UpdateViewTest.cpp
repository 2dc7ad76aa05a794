#include "support/Face.h"

#include <QPlainTextEdit>
#include <QProgressBar>

namespace nocta {
namespace {

class UpdateViewTest : public Face {
protected:
    void openAt(UpdateStage stage) {
        desktop.updater.stage.set(std::move(stage));
        open(realViews.makeUpdateView());
        desktop.trace.clear();
    }
    QStringList buttons() const {
        QStringList texts;
        for (const auto* const each : widget().findChildren<QAbstractButton*>()) {
            texts << each->text();
        }
        return texts;
    }
};

TEST_F(UpdateViewTest, UserIsAskedWhetherToCheck) {
    openAt(UpdatePermissionRequest{});
    EXPECT_TRUE(shows("Check for updates automatically?"));
    click("Check Automatically");
    EXPECT_EQ(calls(), std::vector<std::string>{"setAutomaticallyChecksForUpdates 1"});
    openAt(UpdatePermissionRequest{});
    click("Don't Check");
    EXPECT_EQ(calls(), std::vector<std::string>{"dismiss"});
}

TEST_F(UpdateViewTest, ReleaseIsDescribedAndButtonsWork) {
    const UpdateFound found = {.version = "1.3", .releaseNotes = "<b>Darker</b>\nnights"};
    openAt(found);
    EXPECT_TRUE(shows("Nocta 1.3 is available"));
    EXPECT_TRUE(shows("You have version 1.2.3."));
    auto& notes = control<QPlainTextEdit>("releaseNotes");
    EXPECT_EQ(notes.toPlainText(), "<b>Darker</b>\nnights")
        << "the notes should be shown as text, not as markup";
    EXPECT_TRUE(notes.isReadOnly());
    EXPECT_EQ(buttons(), QStringList({"Skip This Version", "Remind Me Later", "Install"}));
    for (const auto& [button, call] :
         {std::pair{"Install", "install"}, std::pair{"Remind Me Later", "dismiss"},
          std::pair{"Skip This Version", "skip"}}) {
        openAt(found);
        click(button);
        EXPECT_EQ(calls(), std::vector<std::string>{call});
    }
}

TEST_F(UpdateViewTest, ReleaseWithoutNotesHasNoFieldForThem) {
    openAt(UpdateFound{.version = "1.3"});
    EXPECT_EQ(widget().findChild<QPlainTextEdit*>(), nullptr);
}

TEST_F(UpdateViewTest, DownloadShowsItsProgressAndCanBeCanceled) {
    desktop.updater.downloadProgress.set(0.25);
    openAt(UpdateDownload{.version = "1.3"});
    EXPECT_TRUE(shows("Downloading Nocta 1.3"));
    const auto& progress = control<QProgressBar>("downloadProgress");
    EXPECT_EQ(progress.value(), 25);
    desktop.updater.downloadProgress.set(0.999);
    EXPECT_EQ(progress.value(), 99);
    click("Cancel");
    EXPECT_EQ(calls(), std::vector<std::string>{"dismiss"});
}

TEST_F(UpdateViewTest, OutcomesAreShown) {
    openAt(UpdateCheckInProgress{});
    EXPECT_TRUE(shows("Checking for updates…"));
    EXPECT_EQ(buttons(), QStringList("Cancel"));
    openAt(UpdateNotFound{});
    EXPECT_TRUE(shows("Nocta is up to date"));
    EXPECT_TRUE(shows("No version newer than 1.2.3 is available for this system."));
    openAt(UpdaterError{"The file is <i>not</i> signed"});
    EXPECT_TRUE(shows("Nocta could not check for updates"));
    EXPECT_TRUE(shows("The file is <i>not</i> signed"));
    openAt(UpdaterError{.description = "The file is not signed", .version = "1.3"});
    EXPECT_TRUE(shows("Nocta 1.3 could not be installed"));
    openAt(UpdateHandedOver{"1.3"});
    EXPECT_TRUE(shows("Nocta 1.3 is open in the installer"));
    click("OK");
    EXPECT_EQ(calls(), std::vector<std::string>{"dismiss"});
}

TEST_F(UpdateViewTest, EscapeDismissesTheUpdate) {
    openAt(UpdateFound{.version = "1.3", .releaseNotes = "Darker nights"});
    QTest::keyClick(&control<QPlainTextEdit>("releaseNotes"), Qt::Key_Escape);
    EXPECT_EQ(calls(), std::vector<std::string>{"dismiss"});
}

} // namespace
} // namespace nocta
