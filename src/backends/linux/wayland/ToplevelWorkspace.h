#pragma once

#include "backends/linux/wayland/WaylandConnection.h"
#include "backends/linux/wayland/WaylandDisplays.h"
#include "base/CallbackList.h"
#include "base/Deferred.h"
#include "platform/Workspace.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>
#include <wlr-foreign-toplevel-management-unstable-v1-client-protocol.h>

namespace nocta {

/// The applications on a compositor that supports the wlr-foreign-toplevel-management protocol. The
/// protocol reports the application, the state and the outputs of each window, but neither its size
/// nor its process. The size is known only for a window that is full screen on the main screen.
/// Windows on a workspace that is not shown count as well, because the protocol does not
/// distinguish them from visible windows. This class never polls.
class ToplevelWorkspace final : public Workspace {
public:
    ToplevelWorkspace(WaylandConnection& connection, WaylandDisplays& displays, RunLoop& runLoop,
                      std::function<bool()> shouldReduceMotion);
    ToplevelWorkspace(const ToplevelWorkspace&) = delete;
    ToplevelWorkspace& operator=(const ToplevelWorkspace&) = delete;
    ~ToplevelWorkspace() override;

    /// Whether the compositor reports its windows.
    bool isAvailable() const { return manager_ != nullptr; }

    Subscription observeDidActivateApplication(
        std::function<void(const std::optional<RunningApplication>&)> callback) override;
    std::optional<RunningApplication> frontmostApplication() override;
    std::optional<std::vector<WindowInfo>> copyWindowInfo() override;
    std::optional<Rect> mainScreenFrame() override;
    bool accessibilityDisplayShouldReduceMotion() override { return shouldReduceMotion_(); }

private:
    struct Description {
        std::string title;
        std::string appId;
        std::vector<wl_output*> outputs;
        bool isActivated = false;
        bool isMinimized = false;
        bool isFullScreen = false;
    };

    /// A window, with its current description and the one that the next `done` event applies.
    struct Toplevel {
        ToplevelWorkspace* workspace;
        zwlr_foreign_toplevel_handle_v1* handle;
        Description current{};
        Description pending{};
    };

    void bindManager();
    void add(zwlr_foreign_toplevel_handle_v1* handle);
    void remove(const Toplevel& toplevel);
    void removeAll();
    void apply(Toplevel& toplevel);
    void forgetRemovedOutputs();
    void noticeActivation();
    const Description* activeWindow() const;
    std::optional<DisplayId> mainScreen() const;

    static const zwlr_foreign_toplevel_manager_v1_listener managerListener;
    static const zwlr_foreign_toplevel_handle_v1_listener handleListener;

    WaylandConnection& connection_;
    WaylandDisplays& displays_;
    std::function<bool()> shouldReduceMotion_;
    zwlr_foreign_toplevel_manager_v1* manager_ = nullptr;
    std::vector<std::unique_ptr<Toplevel>> toplevels_;
    std::optional<RunningApplication> frontmost_; ///< as last reported
    CallbackList<std::optional<RunningApplication>> activated_;
    Deferred noticeActivation_;
    Subscription removal_;
};

} // namespace nocta
