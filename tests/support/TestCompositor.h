#pragma once

#include "support/CompositorThread.h"

#include <cstdint>
#include <list>
#include <string>
#include <vector>

struct wl_global;
struct wl_resource;

namespace nocta {

struct TestOutput;

/// A small Wayland compositor for tests, named in WAYLAND_DISPLAY while it lives. It offers outputs
/// and their gamma control and power, records what a client does with them, and misbehaves when a
/// test asks for it. Each function returns when the compositor has done what it says.
class TestCompositor {
public:
    /// How an output responds when a client asks for its gamma control.
    enum class Response { size, refusal, none };

    /// Has one output, DP-1.
    TestCompositor();
    TestCompositor(const TestCompositor&) = delete;
    TestCompositor& operator=(const TestCompositor&) = delete;
    ~TestCompositor();

    /// Adds an output of 1280 × 720 pixels with a scale of 1 and its left edge at `x`.
    void addOutput(const std::string& name = "DP-2", int x = 1280);
    void removeOutput(const std::string& name = "DP-2");

    /// Removes the output just before the compositor reads the given request about outputs, gamma
    /// or power, counted from 1. Does nothing if fewer are made.
    void removeOutputAtRequest(const std::string& name, int request);
    int outputRequests() const;

    /// Applies to every later request for a gamma control of this output.
    void respond(const std::string& name, Response response, std::uint32_t size = 256);
    /// Tells the size to a client that is still waiting for a response.
    void respondLate(const std::string& name);
    /// Ends the gamma control that a client has.
    void revokeGamma(const std::string& name);
    void withdrawGammaManager();
    void offerGammaManager();

    void setPower(const std::string& name, bool isOn);

    void disconnectClients();
    /// Disconnects the client that sends the next table, without reading the table.
    void disconnectAtNextTable();
    void pause() { thread_.pause(); }
    void resume() { thread_.resume(); }

    /// For other parts of the compositor. Outputs are the user data of their resources.
    CompositorThread& thread() { return thread_; }

    /// What happened to the ramps of an output: each entry is all levels of red, then of green,
    /// then of blue, or empty if the output's own ramps were restored.
    std::vector<std::vector<std::uint16_t>> gammaOf(const std::string& name) const;
    /// How often a client asked for the gamma control.
    int gammaRequests(const std::string& name) const;

private:
    struct Interfaces;

    TestOutput& find(const std::string& name) const;
    void remove(TestOutput& output);
    void countRequest();
    void requestGamma(TestOutput& output, wl_resource* control);
    void setGamma(TestOutput& output, int file);

    std::list<TestOutput> outputs_; ///< the removed ones too, because clients may still use them
    wl_global* gammaManager_ = nullptr;
    int requests_ = 0;
    int removalRequest_ = 0;
    std::string removalName_;
    bool disconnectsAtTable_ = false;
    mutable CompositorThread thread_;
};

} // namespace nocta
