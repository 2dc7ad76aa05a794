#pragma once

#include "system/FeedbackService.h"

#include <QVBoxLayout>
#include <QWidget>

namespace nocta {

/// The feedback form, and the thanks after sending it.
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
