#include "ui/preferences/FeedbackPreferencesView.h"

#include "ui/Binding.h"
#include "ui/Missing.h"
#include "ui/Text.h"
#include "ui/controls/ActionButton.h"
#include "ui/controls/Label.h"
#include "ui/controls/ProgressBar.h"
#include "ui/controls/SymbolView.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QStackedLayout>
#include <QVBoxLayout>

#include <string>

namespace nocta {

namespace {

constexpr int margin = 24; // points
constexpr int spacing = 12;
constexpr int labelSpacing = 4; // less than `spacing`, so that a label is nearest to its own field
constexpr int messageHeight = 120;
constexpr int emblemSize = 56;

/// Makes a label with its field below it.
QVBoxLayout* makeField(const QString& name, QWidget* field) {
    field->setAccessibleName(name);
    auto* const label = new Label(name);
    label->setBuddy(field);
    auto* const column = new QVBoxLayout;
    column->setSpacing(labelSpacing);
    column->addWidget(label);
    column->addWidget(field);
    return column;
}

QComboBox* makeCategoryPicker(FeedbackService& service) {
    auto* const picker = new QComboBox;
    picker->setObjectName(QStringLiteral("categoryPicker"));
    for (const auto type : allFeedbackTypes) {
        picker->addItem(Text::of(label(type)));
    }
    bind(
        *picker, service.feedbackType,
        [picker](FeedbackType type) { picker->setCurrentIndex(static_cast<int>(type)); },
        &QComboBox::activated,
        [&service](int index) {
            service.feedbackType.set(allFeedbackTypes.at(static_cast<std::size_t>(index)));
        });
    return picker;
}

QPlainTextEdit* makeMessageField(FeedbackService& service) {
    auto* const field = new QPlainTextEdit;
    field->setObjectName(QStringLiteral("messageField"));
    field->setPlaceholderText(Text::tr("What's on your mind?"));
    field->setTabChangesFocus(true);
    field->setFixedHeight(messageHeight);
    follow(*field, service.message, [field](const std::string& text) {
        const auto shown = QString::fromStdString(text);
        if (shown != field->toPlainText()) { // otherwise the cursor would jump
            field->setPlainText(shown);
        }
    });
    QObject::connect(field, &QPlainTextEdit::textChanged, field, [field, &service] {
        service.message.set(field->toPlainText().toStdString());
    });
    return field;
}

QLineEdit* makeEmailField(FeedbackService& service) {
    auto* const field = new QLineEdit(QString::fromStdString(service.email.get()));
    field->setObjectName(QStringLiteral("emailField"));
    QObject::connect(field, &QLineEdit::textEdited, field,
                     [&service](const QString& text) { service.email.set(text.toStdString()); });
    return field;
}

Label* makeErrorMessage(FeedbackService& service) {
    auto* const error = new Label({}, TextStyle::body);
    error->setObjectName(QStringLiteral("errorMessage"));
    error->setWordWrap(true);
    follow(*error, service.errorMessage, [error](const std::optional<std::string>& text) {
        error->setText(text ? Text::of(*text) : QString());
    });
    return error;
}

} // namespace

FeedbackPreferencesView::FeedbackPreferencesView(SharedInstances& instances)
    : service_(instances.feedbackService()) {
    service_.forgetResult(); // of the window that was open before
    const auto missing = missingForFeedback(instances);
    auto* const states = new QStackedLayout(this);
    states->addWidget(makeForm(missing));
    states->addWidget(makeThanks());
    follow(*this, service_.sent, [states](bool sent) { states->setCurrentIndex(sent ? 1 : 0); });
}

QWidget* FeedbackPreferencesView::makeForm(const QString& missing) {
    auto* const email = makeField(Text::tr("Email (optional)"), makeEmailField(service_));
    email->addWidget(new Label(Text::tr("Only if you'd like a reply."), TextStyle::note));

    auto* const form = new QWidget;
    auto* const column = new QVBoxLayout(form);
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(spacing);
    column->addWidget(new Label(Text::tr("Help shape Nocta — share a suggestion, report a bug, or "
                                         "tell us what you think."),
                                TextStyle::paragraph));
    if (!missing.isEmpty()) {
        column->addWidget(new Label(missing, TextStyle::note));
    }
    column->addLayout(makeField(Text::tr("Category"), makeCategoryPicker(service_)));
    column->addLayout(makeField(Text::tr("Message"), makeMessageField(service_)));
    column->addLayout(email);
    column->addWidget(makeErrorMessage(service_));
    column->addWidget(makeSendButton(missing), 0, Qt::AlignRight);
    column->addStretch();
    return form;
}

QWidget* FeedbackPreferencesView::makeSendButton(const QString& missing) {
    auto* const place = new QWidget;
    auto* const states = new QStackedLayout(place);
    auto* const button = new ActionButton(Text::tr("Send feedback"), ActionButton::Rank::prominent);
    button->setObjectName(QStringLiteral("sendButton"));
    button->setToolTip(missing);
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
    connect(another, &QPushButton::clicked, this, [this] { service_.forgetResult(); });

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
