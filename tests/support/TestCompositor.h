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

/// A small Wayland compositor for tests. WAYLAND_DISPLAY contains its name while the compositor
/// exists. The compositor supports outputs with gamma control and power management, records the
/// clients' requests, and can simulate failures. Each function returns after its action has run in
/// the compositor.
class TestCompositor {
public:
    /// An output's response to a request for gamma control.
    enum class Response { size, refusal, none };

    /// Starts with one output, DP-1.
    TestCompositor();
    TestCompositor(const TestCompositor&) = delete;
    TestCompositor& operator=(const TestCompositor&) = delete;
    ~TestCompositor();

    /// Adds an output of 1280 × 720 pixels with a scale of 1 and its left edge at `x`.
    void addOutput(const std::string& name = "DP-2", int x = 1280);
    void removeOutput(const std::string& name = "DP-2");

    /// Removes the output just before the compositor reads the given request about outputs, gamma
    /// or power, counted from 1. Does nothing if fewer requests are made.
    void removeOutputAtRequest(const std::string& name, int request);
    int outputRequests() const;

    /// Sets the response to every later request for gamma control of this output.
    void respond(const std::string& name, Response response, std::uint32_t size = 256);
    /// Sends the size to a client that is still waiting for a response.
    void respondLate(const std::string& name);
    /// Revokes a client's gamma control.
    void revokeGamma(const std::string& name);
    void withdrawGammaManager();
    void offerGammaManager();

    void setPower(const std::string& name, bool isOn);

    void disconnectClients();
    /// Disconnects the client that sends the next table, without reading the table.
    void disconnectAtNextTable();
    void pause() { thread_.pause(); }
    void resume() { thread_.resume(); }

    /// For other parts of the compositor. The user data of an output resource is a `TestOutput`.
    CompositorThread& thread() { return thread_; }

    /// The history of an output's ramps. Each entry contains all red levels, then green, then blue.
    /// An entry is empty if the original ramps were restored.
    std::vector<std::vector<std::uint16_t>> gammaOf(const std::string& name) const;
    /// The number of requests for gamma control of the output.
    int gammaRequests(const std::string& name) const;

private:
    struct Interfaces;

    TestOutput& find(const std::string& name) const;
    void remove(TestOutput& output);
    void countRequest();
    void requestGamma(TestOutput& output, wl_resource* control);
    void setGamma(TestOutput& output, int file);

    std::list<TestOutput> outputs_; ///< including removed ones, which clients may still use
    wl_global* gammaManager_ = nullptr;
    int requests_ = 0;
    int removalRequest_ = 0;
    std::string removalName_;
    bool disconnectsAtTable_ = false;
    mutable CompositorThread thread_;
};

} // namespace nocta
