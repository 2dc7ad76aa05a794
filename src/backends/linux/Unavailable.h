#pragma once

#include "platform/DisplayFilter.h"
#include "platform/Displays.h"
#include "platform/DynamicLibraries.h"
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

class UnavailableDynamicLibraries final : public DynamicLibraries {
public:
    Handle open(std::string_view /*path*/) override { return 0; }
    EntryPoint symbol(Handle /*library*/, std::string_view /*name*/) override { return {}; }
    void close(Handle /*library*/) override {}
};

class UnavailableDisplayFilter final : public DisplayFilter {
public:
    void setType(std::int32_t /*category*/, std::int32_t /*type*/) override {}
    void setCategoryEnabled(std::int32_t /*category*/, bool /*enabled*/) override {}
    std::int32_t getType(std::int32_t /*category*/) override { return 0; }
    bool getCategoryEnabled(std::int32_t /*category*/) override { return false; }
};

} // namespace nocta
