#pragma once

#include "support/Process.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

struct wl_display;
struct wl_event_source;

namespace nocta {

/// Runs the event loop of a Wayland compositor in a separate thread. While this object exists,
/// WAYLAND_DISPLAY and XDG_RUNTIME_DIR contain the address of the compositor. The compositor's
/// objects may be used only inside `call`.
class CompositorThread {
public:
    CompositorThread();
    CompositorThread(const CompositorThread&) = delete;
    CompositorThread& operator=(const CompositorThread&) = delete;
    ~CompositorThread();

    wl_display* display() const { return display_; }

    /// Runs the action in the compositor's thread, and returns when the action is done.
    void call(const std::function<void()>& action);

    /// Suspends the compositor until `resume` is called.
    void pause();
    void resume();

private:
    void runCalls();

    TemporaryFolder folder_;
    wl_display* display_;
    int wakeUp_; ///< readable while a call is pending
    wl_event_source* wakeUpSource_ = nullptr;
    std::mutex mutex_;
    std::vector<std::function<void()>> calls_; ///< guarded by `mutex_`
    std::function<void()> resume_;
    std::thread thread_;
};

} // namespace nocta
