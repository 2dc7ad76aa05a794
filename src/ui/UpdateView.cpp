#include "ui/UpdateView.h"

#include "ui/Binding.h"
#include "ui/Text.h"
#include "ui/controls/Label.h"
#include "ui/controls/ProgressBar.h"
#include "ui/controls/Scroller.h"
#include "ui/controls/SymbolView.h"

#include <QPlainTextEdit>
#include <QShortcut>

#include <utility>
#include <variant>

namespace nocta {

namespace {

constexpr int margin = 24; // points
constexpr int spacing = 8;
constexpr int emblemSize = 48;
constexpr int emblemSpacing = 16;
constexpr int minWidth = 520;
constexpr int notesHeight = 160;

QString shown(std::string_view text) {
    return QString::fromUtf8(text);
}

} // namespace

UpdateView::UpdateView(Desktop& desktop)
    : bundle_(desktop.bundle), updater_(desktop.updater), answers_(new QHBoxLayout) {
    auto* const texts = new QWidget;
    column_ = new QVBoxLayout(texts);
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(spacing);
    std::visit([this](const auto& stage) { build(stage); }, updater_.stage.get());
    column_->addStretch();

    auto* const besideEmblem = new QVBoxLayout;
    besideEmblem->setSpacing(2 * spacing);
    besideEmblem->addWidget(new Scroller(texts));
    besideEmblem->addLayout(answers_);
    auto* const emblem = new QVBoxLayout;
    emblem->addWidget(new SymbolView(QStringLiteral("arrow.triangle.2.circlepath"), emblemSize,
                                     SymbolColor::accent));
    emblem->addStretch();
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(margin, margin, margin, margin);
    row->setSpacing(emblemSpacing);
    row->addLayout(emblem);
    row->addLayout(besideEmblem, 1);
    setMinimumWidth(minWidth);
    auto* const escape = new QShortcut(QKeySequence::Cancel, this);
    connect(escape, &QShortcut::activated, this, [this] { updater_.dismiss(); });
}

void UpdateView::build(const UpdatePermissionRequest& /*request*/) {
    showTexts(
        Text::tr("Check for updates automatically?"),
        Text::tr("Nocta can look for a newer version once a day. The preferences let you change "
                 "this at any time."));
    answers_->addStretch();
    addAnswer(Text::tr("Don't Check"), "dismissButton", &Updater::dismiss);
    addAnswer(
        Text::tr("Check Automatically"), "allowButton",
        [](Updater& updater) { updater.setAutomaticallyChecksForUpdates(true); },
        ActionButton::Rank::prominent);
}

void UpdateView::build(const UpdateCheckInProgress& /*check*/) {
    const auto heading = Text::tr("Checking for updates…");
    showTexts(heading);
    column_->addWidget(new ProgressBar(heading));
    answers_->addStretch();
    addAnswer(Text::tr("Cancel"), "dismissButton", &Updater::dismiss);
}

void UpdateView::build(const UpdateNotFound& /*result*/) {
    showTexts(Text::tr("Nocta is up to date"),
              Text::tr("No version newer than %1 is available for this system.")
                  .arg(shown(bundle_.shortVersionString)));
    answers_->addStretch();
    addAnswer(Text::tr("OK"), "dismissButton", &Updater::dismiss);
}

void UpdateView::build(const UpdateFound& found) {
    showTexts(Text::tr("Nocta %1 is available").arg(shown(found.version)),
              Text::tr("You have version %1.").arg(shown(bundle_.shortVersionString)));
    if (!found.releaseNotes.empty()) {
        auto* const notes = new QPlainTextEdit(shown(found.releaseNotes));
        notes->setObjectName(QStringLiteral("releaseNotes"));
        notes->setAccessibleName(Text::tr("What's new"));
        notes->setReadOnly(true);
        notes->setTabChangesFocus(true);
        notes->setFixedHeight(notesHeight);
        column_->addWidget(notes);
    }
    addAnswer(Text::tr("Skip This Version"), "skipButton", &Updater::skip);
    answers_->addStretch();
    addAnswer(Text::tr("Remind Me Later"), "dismissButton", &Updater::dismiss);
    addAnswer(Text::tr("Install"), "installButton", &Updater::install,
              ActionButton::Rank::prominent);
}

void UpdateView::build(const UpdateDownload& download) {
    const auto heading = Text::tr("Downloading Nocta %1").arg(shown(download.version));
    showTexts(heading);
    auto* const progress = new ProgressBar(heading);
    progress->setRange(0, 100);
    progress->setObjectName(QStringLiteral("downloadProgress"));
    follow(*progress, updater_.downloadProgress,
           [progress](double part) { progress->setValue(static_cast<int>(100 * part)); });
    column_->addWidget(progress);
    answers_->addStretch();
    addAnswer(Text::tr("Cancel"), "dismissButton", &Updater::dismiss);
}

void UpdateView::build(const UpdateHandedOver& update) {
    showTexts(Text::tr("Nocta %1 is open in the installer").arg(shown(update.version)),
              Text::tr("Quit Nocta and start it again once it is installed."));
    answers_->addStretch();
    addAnswer(Text::tr("OK"), "dismissButton", &Updater::dismiss);
}

void UpdateView::build(const UpdaterError& error) {
    showTexts(error.version.empty()
                  ? Text::tr("Nocta could not check for updates")
                  : Text::tr("Nocta %1 could not be installed").arg(shown(error.version)),
              Text::of(error.description));
    answers_->addStretch();
    addAnswer(Text::tr("OK"), "dismissButton", &Updater::dismiss);
}

void UpdateView::showTexts(const QString& heading, const QString& text) {
    column_->addWidget(new Label(heading, TextStyle::heading));
    if (!text.isEmpty()) {
        column_->addWidget(new Label(text, TextStyle::paragraph));
    }
}

void UpdateView::addAnswer(const QString& text, const char* identifier,
                           std::function<void(Updater&)> answer, ActionButton::Rank rank) {
    auto* const button = new ActionButton(text, rank);
    button->setObjectName(QLatin1String(identifier));
    connect(button, &QPushButton::clicked, this,
            [this, answer = std::move(answer)] { answer(updater_); });
    answers_->addWidget(button);
    if (rank == ActionButton::Rank::prominent) {
        button->setFocus();
    }
}

} // namespace nocta
