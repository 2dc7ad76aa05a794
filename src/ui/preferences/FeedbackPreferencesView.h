#pragma once

#include "system/FeedbackService.h"

#include <QVBoxLayout>
#include <QWidget>

namespace nocta {

/// Shows the feedback form, and a thank-you message after the user has sent it. A new view starts
/// with the form.
class FeedbackPreferencesView final : public QWidget {
public:
    explicit FeedbackPreferencesView(FeedbackService& service);

private:
    QWidget* makeForm();
    QWidget* makeThanks();
    QWidget* makeSendButton();

    FeedbackService& service_;
};

} // namespace nocta
