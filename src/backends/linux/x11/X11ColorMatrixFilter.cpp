#include "backends/linux/x11/X11ColorMatrixFilter.h"

#include <algorithm>
#include <utility>

namespace nocta {

X11ColorMatrixFilter::X11ColorMatrixFilter(X11Connection& connection, X11Displays& displays,
                                           NotificationCenter& notificationCenter,
                                           Guardian& guardian)
    : connection_(connection), displays_(displays), guardian_(guardian),
      screens_(notificationCenter.observe(didChangeScreenParametersNotification,
                                          [this] {
                                              if (isOurs_ && !isWaiting_) {
                                                  grayDisplays();
                                              }
                                          })),
      permission_(guardian.observe([this](Guardian::Permission permission) { take(permission); })) {
    // Restores the colors if an earlier Nocta died together with its guardian while the screen was
    // gray.
    if (!readFactoryMatrices(connection_.get(), connection_.root()).empty()) {
        isWaiting_ = true;
        take(guardian_.request(this));
    }
    connection_.finishTurn();
}

X11ColorMatrixFilter::~X11ColorMatrixFilter() {
    X11ColorMatrixFilter::setOn(false);
    if (isWaiting_) {
        guardian_.dismiss(this);
    }
}

bool X11ColorMatrixFilter::isAvailable() const {
    return !matrices().empty();
}

bool X11ColorMatrixFilter::isOn() {
    if (isWaiting_) {
        return isOurs_;
    }
    const auto shown = matrices();
    return !shown.empty() && std::ranges::all_of(shown, [](const DisplayMatrix& display) {
        return display.matrix == grayMatrix();
    });
}

void X11ColorMatrixFilter::setOn(bool on) {
    if (on) {
        isOurs_ = true;
        isWaiting_ = true;
        take(guardian_.request(this));
    } else if (std::exchange(isOurs_, false) && !isWaiting_) {
        restoreDisplays();
    }
}

/// Carries out the pending changes once the permission to write is known.
void X11ColorMatrixFilter::take(Guardian::Permission permission) {
    if (permission == Guardian::Permission::pending) {
        return;
    }
    const auto isWaiting = std::exchange(isWaiting_, false);
    if (permission == Guardian::Permission::refused) {
        isOurs_ = false;
    } else if (isWaiting && isOurs_) {
        grayDisplays();
    } else if (isWaiting) {
        restoreDisplays();
    }
}

std::vector<X11ColorMatrixFilter::DisplayMatrix> X11ColorMatrixFilter::matrices() const {
    std::vector<DisplayMatrix> found;
    for (const auto display : displays_.ids()) {
        if (const auto matrix = readMatrix(connection_.get(), display)) {
            found.push_back({display, *matrix});
        }
    }
    connection_.finishTurn();
    return found;
}

void X11ColorMatrixFilter::grayDisplays() {
    auto* const x = connection_.get();
    const auto root = connection_.root();
    const auto shown = matrices();
    auto kept = readFactoryMatrices(x, root);
    for (const auto& [output, matrix] : shown) {
        kept.emplace(output, matrix);
    }
    storeFactoryMatrices(x, root, kept);
    for (const auto& display : shown) {
        writeMatrix(x, display.output, grayMatrix());
    }
    connection_.finishTurn();
}

void X11ColorMatrixFilter::restoreDisplays() {
    guardian_.restore(this, [this] {
        auto* const x = connection_.get();
        restore(x, connection_.root(), readFactoryMatrices(x, connection_.root()));
    });
}

} // namespace nocta
