#include "backends/linux/x11/X11ColorMatrixFilter.h"

#include <algorithm>
#include <utility>

namespace nocta {

X11ColorMatrixFilter::X11ColorMatrixFilter(X11Connection& connection, X11Displays& displays,
                                           NotificationCenter& notificationCenter,
                                           Guardian& guardian)
    : connection_(connection), displays_(displays), guardian_(guardian),
      screens_(notificationCenter.observe(didChangeScreenParametersNotification, [this] {
          if (isOurs_) {
              grayDisplays();
          }
      })) {
    // What a Nocta has left gray that died together with its guardian.
    if (!readFactoryMatrices(connection_.get(), connection_.root()).empty() && guardian_.start()) {
        giveBackDisplays();
    }
    connection_.finishTurn();
}

bool X11ColorMatrixFilter::isAvailable() const {
    return !matrices().empty();
}

bool X11ColorMatrixFilter::isOn() {
    const auto shown = matrices();
    return !shown.empty() && std::ranges::all_of(shown, [](const DisplayMatrix& display) {
        return display.matrix == grayMatrix();
    });
}

void X11ColorMatrixFilter::setOn(bool on) {
    if (on && (isOurs_ || guardian_.start())) {
        isOurs_ = true;
        grayDisplays();
    } else if (!on && std::exchange(isOurs_, false)) {
        giveBackDisplays();
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
    keepFactoryMatrices(x, root, kept);
    for (const auto& display : shown) {
        writeMatrix(x, display.output, grayMatrix());
    }
    connection_.finishTurn();
}

void X11ColorMatrixFilter::giveBackDisplays() {
    auto* const x = connection_.get();
    giveBack(x, connection_.root(), readFactoryMatrices(x, connection_.root()));
    if (connection_.synchronize()) {
        guardian_.dismiss();
    } else {
        guardian_.wake();
    }
}

} // namespace nocta
