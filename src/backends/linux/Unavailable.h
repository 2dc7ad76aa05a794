#pragma once

#include "platform/Displays.h"
#include "platform/GammaOutput.h"
#include "platform/KeyEvents.h"
#include "platform/Workspace.h"

#include <utility>

namespace nocta {

// Ports for features that this session does not support. Each port reports that and does nothing.

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

/// The reduced motion setting is known even without an X server.
class UnavailableWorkspace final : public Workspace {
public:
    explicit UnavailableWorkspace(std::function<bool()> shouldReduceMotion)
        : shouldReduceMotion_(std::move(shouldReduceMotion)) {}

    Subscription observeDidActivateApplication(
        std::function<void(const std::optional<RunningApplication>&)> /*callback*/) override {
        return {};
    }
    std::optional<RunningApplication> frontmostApplication() override { return std::nullopt; }
    std::optional<std::vector<WindowInfo>> copyWindowInfo() override { return std::nullopt; }
    std::optional<Rect> mainScreenFrame() override { return std::nullopt; }
    bool accessibilityDisplayShouldReduceMotion() override { return shouldReduceMotion_(); }

private:
    std::function<bool()> shouldReduceMotion_;
};

} // namespace nocta
