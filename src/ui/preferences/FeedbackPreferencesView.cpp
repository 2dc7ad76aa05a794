#include "ui/preferences/FeedbackPreferencesView.h"

#include "ui/Binding.h"
#include "ui/Text.h"
#include "ui/controls/ActionButton.h"
#include "ui/controls/Label.h"
#include "ui/controls/ProgressBar.h"
#include "ui/controls/SymbolView.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QStackedLayout>

#include <string>

namespace nocta {

namespace {

constexpr int margin = 24; // points
constexpr int spacing = 8;
constexpr int messageHeight = 120;
constexpr int emblemSize = 56;

Label* makeFieldLabel(const QString& text, QWidget& field) {
    auto* const label = new Label(text);
    label->setBuddy(&field);
    return label;
}

} // namespace

FeedbackPreferencesView::FeedbackPreferencesView(FeedbackService& service) : service_(service) {
    auto* const states = new QStackedLayout(this);
    states->addWidget(makeForm());
    states->addWidget(makeThanks());
    follow(*this, service_.sent, [states](bool sent) { states->setCurrentIndex(sent ? 1 : 0); });
}

QWidget* FeedbackPreferencesView::makeForm() {
    auto* const category = new QComboBox;
    category->setObjectName(QStringLiteral("categoryPicker"));
    category->setAccessibleName(Text::tr("Category"));
    for (const auto type : allFeedbackTypes) {
        category->addItem(Text::of(label(type)));
    }
    bind(
        *category, service_.feedbackType,
        [category](FeedbackType type) { category->setCurrentIndex(static_cast<int>(type)); },
        &QComboBox::activated,
        [this](int index) {
            service_.feedbackType.set(allFeedbackTypes.at(static_cast<std::size_t>(index)));
        });

    auto* const message = new QPlainTextEdit;
    message->setObjectName(QStringLiteral("messageField"));
    message->setAccessibleName(Text::tr("Message"));
    message->setPlaceholderText(Text::tr("What's on your mind?"));
    message->setTabChangesFocus(true);
    message->setFixedHeight(messageHeight);
    follow(*message, service_.message, [message](const std::string& text) {
        const auto shown = QString::fromStdString(text);
        if (shown != message->toPlainText()) { // otherwise the cursor would jump
            message->setPlainText(shown);
        }
    });
    connect(message, &QPlainTextEdit::textChanged, this,
            [this, message] { service_.message.set(message->toPlainText().toStdString()); });

    auto* const email = new QLineEdit(QString::fromStdString(service_.email.get()));
    email->setObjectName(QStringLiteral("emailField"));
    email->setAccessibleName(Text::tr("Email (optional)"));
    connect(email, &QLineEdit::textEdited, this,
            [this](const QString& text) { service_.email.set(text.toStdString()); });

    auto* const error = new Label({}, TextStyle::body);
    error->setObjectName(QStringLiteral("errorMessage"));
    error->setWordWrap(true);
    follow(*error, service_.errorMessage, [error](const std::optional<std::string>& text) {
        error->setText(text ? Text::of(*text) : QString());
    });

    auto* const form = new QWidget;
    auto* const column = new QVBoxLayout(form);
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(spacing);
    column->addWidget(new Label(Text::tr("Help shape Nocta — share a suggestion, report a bug, or "
                                         "tell us what you think."),
                                TextStyle::paragraph));
    column->addWidget(makeFieldLabel(Text::tr("Category"), *category));
    column->addWidget(category);
    column->addWidget(makeFieldLabel(Text::tr("Message"), *message));
    column->addWidget(message);
    column->addWidget(makeFieldLabel(Text::tr("Email (optional)"), *email));
    column->addWidget(email);
    column->addWidget(new Label(Text::tr("Only if you'd like a reply."), TextStyle::note));
    column->addWidget(error);
    column->addWidget(makeSendButton(), 0, Qt::AlignRight);
    column->addStretch();
    return form;
}

QWidget* FeedbackPreferencesView::makeSendButton() {
    auto* const place = new QWidget;
    auto* const states = new QStackedLayout(place);
    auto* const button = new ActionButton(Text::tr("Send feedback"), ActionButton::Rank::prominent);
    button->setObjectName(QStringLiteral("sendButton"));
    connect(button, &QPushButton::clicked, this, [this] { service_.send(); });
    states->addWidget(button);
    auto* const progress = new ProgressBar(Text::tr("Send feedback"));
    progress->setObjectName(QStringLiteral("sendProgress"));
    states->addWidget(progress);
    follow(*place, service_.isSending,
           [states](bool isSending) { states->setCurrentIndex(isSending ? 1 : 0); });
    follow(*place, service_.message, [this, button](const std::string& /*text*/) {
        button->setEnabled(service_.canSend() || service_.isSending.get());
    });
    return place;
}

QWidget* FeedbackPreferencesView::makeThanks() {
    auto* const another = new ActionButton(Text::tr("Send another"));
    another->setObjectName(QStringLiteral("sendAnotherButton"));
    connect(another, &QPushButton::clicked, this, [this] { service_.sendAnother(); });

    auto* const thanks = new QWidget;
    auto* const column = new QVBoxLayout(thanks);
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(spacing);
    column->addStretch();
    column->addWidget(
        new SymbolView(QStringLiteral("checkmark.circle.fill"), emblemSize, SymbolColor::accent), 0,
        Qt::AlignHCenter);
    column->addWidget(new Label(Text::tr("Thanks for your feedback!"), TextStyle::heading), 0,
                      Qt::AlignHCenter);
    column->addWidget(another, 0, Qt::AlignHCenter);
    column->addStretch(2);
    return thanks;
}

} // namespace nocta
