#pragma once

#include "platform/Desktop.h"
#include "ui/controls/ActionButton.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <QWidget>

#include <functional>
#include <variant>

namespace nocta {

/// Shows the current stage of the updater and passes the user's answers to it.
class UpdateView final : public QWidget {
public:
    explicit UpdateView(Desktop& desktop);

private:
    void build(std::monostate /*nothing*/) {}
    void build(const UpdatePermissionRequest& request);
    void build(const UpdateCheckInProgress& check);
    void build(const UpdateNotFound& result);
    void build(const UpdateFound& found);
    void build(const UpdateDownload& download);
    void build(const UpdateHandedOver& update);
    void build(const UpdaterError& error);

    void showTexts(const QString& heading, const QString& text = {});
    void addAnswer(const QString& text, const char* identifier,
                   std::function<void(Updater&)> answer,
                   ActionButton::Rank rank = ActionButton::Rank::normal);

    const Bundle& bundle_;
    Updater& updater_;
    QVBoxLayout* column_;  ///< scrolls if the screen is too small
    QHBoxLayout* answers_; ///< always visible
};

} // namespace nocta
