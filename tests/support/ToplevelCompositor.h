#pragma once

#include "support/CompositorThread.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <string>
#include <vector>

struct wl_client;
struct wl_global;
struct wl_resource;

namespace nocta {

/// A small Wayland compositor for tests. It has outputs, and reports windows to one client with the
/// wlr-foreign-toplevel-management protocol. A test chooses the exact events and their order. The
/// events from one call to `send` reach the client together.
class ToplevelCompositor {
public:
    enum class State : std::uint32_t { maximized, minimized, activated, fullScreen };

    /// If `reportsWindows` is false, the protocol is not offered.
    explicit ToplevelCompositor(bool reportsWindows = true);
    ToplevelCompositor(const ToplevelCompositor&) = delete;
    ToplevelCompositor& operator=(const ToplevelCompositor&) = delete;
    ~ToplevelCompositor();

    void send(const std::function<void()>& events) { thread_.call(events); }

    // The following functions are for use in `send`. Windows are numbered from 0 in the order in
    // which they were opened.

    /// Adds an output of 1280 × 720 pixels with its left edge at `x`.
    void addOutput(const std::string& name, int x);
    void removeOutput(const std::string& name);

    void open();
    void setTitle(std::size_t window, const std::string& title);
    void setAppId(std::size_t window, const std::string& appId);
    void setStates(std::size_t window, const std::vector<State>& states);
    void enter(std::size_t window, const std::string& output);
    void finishDescription(std::size_t window);
    void close(std::size_t window);

    /// Sends the `finished` event. Afterward, no windows are reported.
    void finish();

private:
    struct Output;
    struct Interfaces;

    Output& find(const std::string& name);

    std::list<Output> outputs_; ///< including removed ones, which the client may still use
    wl_resource* manager_ = nullptr;
    std::vector<wl_resource*> windows_;
    CompositorThread thread_;
};

} // namespace nocta
