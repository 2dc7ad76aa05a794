#pragma once

#include "app/SharedInstances.h"

#include <QString>
#include <QWidget>

namespace nocta {

/// Shows the feedback form, and a thank-you message after the user has sent it. A new view starts
/// with the form.
class FeedbackPreferencesView final : public QWidget {
public:
    explicit FeedbackPreferencesView(SharedInstances& instances);

private:
    // `missing` explains why nothing can be sent; it is empty if nothing is missing.
    QWidget* makeForm(const QString& missing);
    QWidget* makeSendButton(const QString& missing);
    QWidget* makeThanks();

    FeedbackService& service_;
};

} // namespace nocta
