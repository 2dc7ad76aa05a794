#pragma once

#include "platform/GammaOutput.h"
#include "platform/KeyEvents.h"

namespace nocta {

// Ports for features that this session does not support. Each port reports that its feature is
// unsupported and otherwise does nothing.

class UnavailableGammaOutput final : public GammaOutput {
public:
    bool isAvailable() const override { return false; }
    Status setDisplayTransferByTable(DisplayId /*display*/, std::span<const float> /*red*/,
                                     std::span<const float> /*green*/,
                                     std::span<const float> /*blue*/) override {
        return statusFailure;
    }
    void displayRestoreColorSyncSettings() override {}
};

class UnavailableKeyEvents final : public KeyEvents {
public:
    Subscription addGlobalMonitorForSystemDefinedEvents(
        std::function<void(const SystemDefinedEvent&)> /*handler*/) override {
        return {};
    }
    Subscription createKeyDownTap(std::function<void(const KeyDownEvent&)> /*handler*/) override {
        return {};
    }
};

} // namespace nocta
