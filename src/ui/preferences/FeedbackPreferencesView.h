#pragma once

#include "system/FeedbackService.h"

#include <QVBoxLayout>
#include <QWidget>

namespace nocta {

/// The form for a message to the makers, and the thanks for one.
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
