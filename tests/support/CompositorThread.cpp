#include "support/CompositorThread.h"

#include <cstdlib>
#include <future>
#include <stdexcept>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>
#include <wayland-server.h>

namespace nocta {

CompositorThread::CompositorThread()
    : display_(wl_display_create()), wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    setenv("XDG_RUNTIME_DIR", folder_.path().c_str(), 1);
    const auto* const name = wl_display_add_socket_auto(display_);
    if (name == nullptr) {
        throw std::runtime_error("cannot listen in " + folder_.path());
    }
    setenv("WAYLAND_DISPLAY", name, 1);
    wakeUpSource_ = wl_event_loop_add_fd(
        wl_display_get_event_loop(display_), wakeUp_, WL_EVENT_READABLE,
        [](int /*descriptor*/, std::uint32_t /*events*/, void* self) {
            static_cast<CompositorThread*>(self)->runCalls();
            return 0;
        },
        this);
    thread_ = std::thread([this] { wl_display_run(display_); });
}

CompositorThread::~CompositorThread() {
    resume();
    call([this] { wl_display_terminate(display_); });
    thread_.join();
    wl_event_source_remove(wakeUpSource_);
    wl_display_destroy_clients(display_);
    wl_display_destroy(display_);
    close(wakeUp_);
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("XDG_RUNTIME_DIR");
}

void CompositorThread::call(const std::function<void()>& action) {
    std::promise<void> done;
    {
        const std::lock_guard lock(mutex_);
        calls_.emplace_back([&] {
            action();
            done.set_value();
        });
    }
    eventfd_write(wakeUp_, 1);
    done.get_future().wait();
}

void CompositorThread::pause() {
    const auto end = std::make_shared<std::promise<void>>();
    std::promise<void> isPaused;
    {
        const std::lock_guard lock(mutex_);
        calls_.emplace_back([end, &isPaused] {
            isPaused.set_value();
            end->get_future().wait();
        });
    }
    eventfd_write(wakeUp_, 1);
    isPaused.get_future().wait();
    resume_ = [end] { end->set_value(); };
}

void CompositorThread::resume() {
    if (const auto resume = std::exchange(resume_, nullptr)) {
        resume();
    }
}

void CompositorThread::runCalls() {
    eventfd_t ignored = 0;
    eventfd_read(wakeUp_, &ignored);
    std::vector<std::function<void()>> calls;
    {
        const std::lock_guard lock(mutex_);
        calls.swap(calls_);
    }
    for (const auto& call : calls) {
        call();
    }
    wl_display_flush_clients(display_);
}

} // namespace nocta
