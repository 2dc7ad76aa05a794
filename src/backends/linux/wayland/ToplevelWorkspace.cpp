#include "backends/linux/wayland/ToplevelWorkspace.h"

#include "backends/linux/applications/ApplicationIdentity.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <utility>

namespace nocta {

namespace {

constexpr std::uint32_t fullScreenVersion = 2; // the first version that reports full screen

template <class Data>
Data& of(void* data) {
    return *static_cast<Data*>(data);
}

bool contains(const wl_array& states, std::uint32_t state) {
    const std::span numbers(static_cast<const std::uint32_t*>(states.data),
                            states.size / sizeof(std::uint32_t));
    return std::ranges::find(numbers, state) != numbers.end();
}

/// By convention, an application's ID is the name of its desktop file.
std::optional<RunningApplication> applicationOf(const std::string& appId,
                                                const std::string& title) {
    const RunningApplication application{
        .bundleIdentifier =
            bundleIdentifierOf({.flatpak = {}, .desktopFile = appId, .windowClass = {}}),
        .localizedName = appId.empty() ? title : appId};
    return application == RunningApplication{} ? std::nullopt : std::optional(application);
}

} // namespace

const zwlr_foreign_toplevel_manager_v1_listener ToplevelWorkspace::managerListener = {
    .toplevel =
        [](void* data, zwlr_foreign_toplevel_manager_v1* /*manager*/,
           zwlr_foreign_toplevel_handle_v1* handle) { of<ToplevelWorkspace>(data).add(handle); },
    .finished =
        [](void* data, zwlr_foreign_toplevel_manager_v1* /*manager*/) {
            of<ToplevelWorkspace>(data).removeAll();
        }};

const zwlr_foreign_toplevel_handle_v1_listener ToplevelWorkspace::handleListener = {
    .title = [](void* data, zwlr_foreign_toplevel_handle_v1* /*handle*/,
                const char* title) { of<Toplevel>(data).pending.title = title; },
    .app_id = [](void* data, zwlr_foreign_toplevel_handle_v1* /*handle*/,
                 const char* appId) { of<Toplevel>(data).pending.appId = appId; },
    .output_enter =
        [](void* data, zwlr_foreign_toplevel_handle_v1* /*handle*/, wl_output* output) {
            if (output != nullptr) { // null for an output that was released in the meantime
                of<Toplevel>(data).pending.outputs.push_back(output);
            }
        },
    .output_leave =
        [](void* data, zwlr_foreign_toplevel_handle_v1* /*handle*/, wl_output* output) {
            std::erase(of<Toplevel>(data).pending.outputs, output);
        },
    .state =
        [](void* data, zwlr_foreign_toplevel_handle_v1* /*handle*/, wl_array* states) {
            auto& pending = of<Toplevel>(data).pending;
            pending.isActivated =
                contains(*states, ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED);
            pending.isMinimized =
                contains(*states, ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_MINIMIZED);
            pending.isFullScreen =
                contains(*states, ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_FULLSCREEN);
        },
    .done =
        [](void* data, zwlr_foreign_toplevel_handle_v1* /*handle*/) {
            auto& toplevel = of<Toplevel>(data);
            toplevel.workspace->apply(toplevel);
        },
    .closed =
        [](void* data, zwlr_foreign_toplevel_handle_v1* /*handle*/) {
            auto& toplevel = of<Toplevel>(data);
            toplevel.workspace->remove(toplevel);
        },
    .parent = [](void* /*data*/, zwlr_foreign_toplevel_handle_v1* /*handle*/,
                 zwlr_foreign_toplevel_handle_v1* /*parent*/) {}};

ToplevelWorkspace::ToplevelWorkspace(WaylandConnection& connection, WaylandDisplays& displays,
                                     RunLoop& runLoop, std::function<bool()> shouldReduceMotion)
    : connection_(connection), displays_(displays),
      shouldReduceMotion_(std::move(shouldReduceMotion)),
      noticeActivation_(runLoop, [this] { noticeActivation(); }),
      removal_(displays.observeRemoval([this](DisplayId /*display*/) { forgetRemovedOutputs(); })) {
    bindManager();
    frontmost_ = frontmostApplication();
}

ToplevelWorkspace::~ToplevelWorkspace() {
    if (manager_ != nullptr) {
        zwlr_foreign_toplevel_manager_v1_stop(manager_);
        removeAll();
    }
}

Subscription ToplevelWorkspace::observeDidActivateApplication(
    std::function<void(const std::optional<RunningApplication>&)> callback) {
    return activated_.add(std::move(callback));
}

std::optional<RunningApplication> ToplevelWorkspace::frontmostApplication() {
    const auto* const window = activeWindow();
    return window == nullptr ? std::nullopt : applicationOf(window->appId, window->title);
}

std::optional<std::vector<WindowInfo>> ToplevelWorkspace::copyWindowInfo() {
    if (!isAvailable()) {
        return std::nullopt;
    }
    const auto screen = mainScreen();
    auto* const mainOutput = screen ? displays_.outputOf(*screen) : nullptr;
    std::vector<WindowInfo> infos;
    for (const auto& toplevel : toplevels_) {
        const auto& window = toplevel->current;
        if (window.isMinimized) {
            continue;
        }
        auto& info = infos.emplace_back();
        if (window.isFullScreen &&
            std::ranges::find(window.outputs, mainOutput) != window.outputs.end()) {
            const auto frame = displays_.displayBounds(*screen);
            info = {.width = frame.width, .height = frame.height};
        }
    }
    return infos;
}

std::optional<Rect> ToplevelWorkspace::mainScreenFrame() {
    const auto screen = mainScreen();
    return screen ? std::optional(displays_.displayBounds(*screen)) : std::nullopt;
}

void ToplevelWorkspace::bindManager() {
    const auto name = connection_.firstGlobal(zwlr_foreign_toplevel_manager_v1_interface);
    if (!name) {
        return;
    }
    manager_ = connection_.bind<zwlr_foreign_toplevel_manager_v1>(
        *name, zwlr_foreign_toplevel_manager_v1_interface, fullScreenVersion);
    zwlr_foreign_toplevel_manager_v1_add_listener(manager_, &managerListener, this);
    connection_.synchronize(WaylandConnection::maxWaitAtStart);
}

void ToplevelWorkspace::add(zwlr_foreign_toplevel_handle_v1* handle) {
    auto& toplevel = toplevels_.emplace_back(
        std::make_unique<Toplevel>(Toplevel{.workspace = this, .handle = handle}));
    zwlr_foreign_toplevel_handle_v1_add_listener(handle, &handleListener, toplevel.get());
}

void ToplevelWorkspace::remove(const Toplevel& toplevel) {
    zwlr_foreign_toplevel_handle_v1_destroy(toplevel.handle);
    std::erase_if(toplevels_, [&](const auto& entry) { return entry.get() == &toplevel; });
    connection_.finishTurn();
    noticeActivation_.request();
}

/// Releases everything, because the compositor reports no more windows.
void ToplevelWorkspace::removeAll() {
    while (!toplevels_.empty()) {
        remove(*toplevels_.back());
    }
    zwlr_foreign_toplevel_manager_v1_destroy(std::exchange(manager_, nullptr));
    connection_.finishTurn();
}

void ToplevelWorkspace::apply(Toplevel& toplevel) {
    const auto isSame = toplevel.current.isActivated == toplevel.pending.isActivated &&
                        toplevel.current.appId == toplevel.pending.appId;
    toplevel.current = toplevel.pending;
    if (!isSame) { // a new title is not an activation
        noticeActivation_.request();
    }
}

/// Forgets removed outputs, because a new output may get the address of a removed one.
void ToplevelWorkspace::forgetRemovedOutputs() {
    std::vector<wl_output*> outputs;
    for (const auto display : displays_.ids()) {
        outputs.push_back(displays_.outputOf(display));
    }
    const auto isRemoved = [&](wl_output* output) {
        return std::ranges::find(outputs, output) == outputs.end();
    };
    for (const auto& toplevel : toplevels_) {
        std::erase_if(toplevel->current.outputs, isRemoved);
        std::erase_if(toplevel->pending.outputs, isRemoved);
    }
}

void ToplevelWorkspace::noticeActivation() {
    const auto application = frontmostApplication();
    if (!isSameApplication(application, frontmost_)) {
        frontmost_ = application;
        activated_.call(application);
    }
}

const ToplevelWorkspace::Description* ToplevelWorkspace::activeWindow() const {
    const auto active = std::ranges::find_if(
        toplevels_, [](const auto& toplevel) { return toplevel->current.isActivated; });
    return active == toplevels_.end() ? nullptr : &(*active)->current;
}

/// Returns the display of the active window, or else the main display. The protocol does not report
/// which of several displays contains most of a window. If the window is on several displays, this
/// function returns the main display if it is among them, or else the first one.
std::optional<DisplayId> ToplevelWorkspace::mainScreen() const {
    auto ids = displays_.ids();
    std::stable_partition(ids.begin(), ids.end(),
                          [this](DisplayId id) { return displays_.displayIsMain(id); });
    const auto* const window = activeWindow();
    const auto screen = std::ranges::find_if(ids, [&](DisplayId id) {
        return window != nullptr &&
               std::ranges::find(window->outputs, displays_.outputOf(id)) != window->outputs.end();
    });
    if (screen != ids.end()) {
        return *screen;
    }
    return ids.empty() ? std::nullopt : std::optional(ids.front());
}

} // namespace nocta
