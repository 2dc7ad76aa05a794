#include "app/Windows.h"

#include "base/Translatable.h"

#include <variant>

namespace nocta {

namespace {

constexpr AppWindows::Style preferencesStyle = {
    .title = "Preferences",
    .styleMask = AppWindows::titled | AppWindows::closable | AppWindows::miniaturizable};
constexpr AppWindows::Style updateStyle = {.title = translatable("Nocta", "Software Update"),
                                           .styleMask = AppWindows::titled | AppWindows::closable};

/// Returns whether the stage is the result of a request that the user has just made.
bool isRequested(const UpdateStage& stage) {
    return std::holds_alternative<UpdateCheckInProgress>(stage) ||
           std::holds_alternative<UpdateDownload>(stage);
}

} // namespace

Windows::Windows(Desktop& desktop, Views& views)
    : desktop_(desktop), views_(views),
      stageChanged_(desktop.runLoop, [this] { showUpdateStage(); }) {}

void Windows::showPreferences() {
    desktop_.application.activateIgnoringOtherApps();
    if (preferences_ == nullptr) {
        preferences_ = desktop_.appWindows.makeWindow(
            preferencesStyle, views_.makePreferencesView(), [this] { preferences_.reset(); });
    }
    preferences_->makeKeyAndOrderFront();
}

void Windows::followUpdater() {
    // Deferred, because a button in the window may have changed the stage.
    stage_ = desktop_.updater.stage.subscribe(
        [this](const UpdateStage& /*stage*/) { stageChanged_.request(); });
}

void Windows::showUpdateStage() {
    const auto& stage = desktop_.updater.stage.get();
    const auto wasOpen = update_ != nullptr;
    if (std::holds_alternative<std::monostate>(stage)) {
        update_.reset();
        return;
    }
    if (!wasOpen || stage.index() != shownStage_) {
        shownStage_ = stage.index();
        update_ = desktop_.appWindows.makeWindow(updateStyle, views_.makeUpdateView(),
                                                 [this] { desktop_.updater.dismiss(); });
    }
    if (wasOpen || isRequested(stage)) {
        desktop_.application.activateIgnoringOtherApps();
        update_->makeKeyAndOrderFront();
    } else {
        update_->orderFrontRegardless(); // the user may be typing elsewhere
    }
}

} // namespace nocta
