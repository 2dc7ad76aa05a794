#pragma once

#include "platform/Displays.h"
#include "platform/GammaOutput.h"
#include "platform/KeyEvents.h"

namespace nocta {

// Ports for what this session cannot do. Each says so and does nothing.

class UnavailableDisplays final : public Displays {
public:
    Status getActiveDisplayList(std::span<DisplayId> /*ids*/, std::uint32_t& count) override {
        count = 0;
        return statusFailure;
    }
    Rect displayBounds(DisplayId /*display*/) override { return {}; }
    bool displayIsMain(DisplayId /*display*/) override { return false; }
    bool displayIsBuiltin(DisplayId /*display*/) override { return false; }
    std::optional<DisplayMode> displayCopyDisplayMode(DisplayId /*display*/) override {
        return std::nullopt;
    }
};

class UnavailableGammaOutput final : public GammaOutput {
public:
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
