#include "backends/linux/x11/X11Applications.h"

#include "backends/linux/applications/ApplicationIdentity.h"
#include "backends/linux/applications/FlatpakInfo.h"
#include "backends/linux/x11/WindowProperty.h"

#include <xcb/res.h>

#include <string>
#include <utility>
#include <vector>

namespace nocta {

namespace {

constexpr std::uint32_t maxTextLength = 256; // for each property, in units of 32 bits

std::string textAt(const std::vector<std::string>& texts, std::size_t index) {
    return index < texts.size() ? texts[index] : std::string();
}

} // namespace

X11Applications::X11Applications(X11Connection& connection, std::filesystem::path processes)
    : connection_(connection), processes_(std::move(processes)) {
    auto* const x = connection_.get();
    const auto* const extension = findExtension(x, xcb_res_id);
    const XcbReply<xcb_res_query_version_reply_t> version(
        extension != nullptr
            ? xcb_res_query_version_reply(x, xcb_res_query_version(x, 1, 2), nullptr)
            : nullptr);
    knowsProcesses_ = version && std::pair(version->server_major, version->server_minor) >=
                                     std::pair<std::uint16_t, std::uint16_t>(1, 2);
}

std::optional<RunningApplication> X11Applications::applicationOf(xcb_window_t window) const {
    if (window == XCB_NONE) {
        return std::nullopt;
    }
    const auto property = [&](xcb_atom_t atom, xcb_atom_t type) {
        return WindowProperty(connection_, window, atom, type, maxTextLength);
    };
    const auto windowClass = property(XCB_ATOM_WM_CLASS, XCB_ATOM_ANY);
    const auto name = property(wmName_, utf8String_);
    std::vector<WindowProperty> desktopFiles;
    for (const auto atom : desktopFile_) {
        desktopFiles.push_back(property(atom, XCB_ATOM_ANY));
    }

    ApplicationIdentity identity;
    identity.windowClass = textAt(windowClass.texts(), 1); // the first text is the instance
    const auto title = textAt(name.texts(), 0);
    for (const auto& desktopFile : desktopFiles) {
        const auto text = textAt(desktopFile.texts(), 0);
        identity.desktopFile = identity.desktopFile.empty() ? text : identity.desktopFile;
    }
    if (const auto process = processOf(window); process != 0) {
        identity.flatpak = flatpakId(processes_ / std::to_string(process) / "root");
    }
    const RunningApplication application{
        .bundleIdentifier = bundleIdentifierOf(identity),
        .localizedName = identity.windowClass.empty() ? title : identity.windowClass};
    return application == RunningApplication{} ? std::nullopt : std::optional(application);
}

/// The process whose connection created a window, according to the server, or 0. The process ID
/// that a window itself reports may be valid only inside a sandbox.
std::uint32_t X11Applications::processOf(xcb_window_t window) const {
    constexpr std::uint32_t wanted = XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID;
    if (!knowsProcesses_) {
        return 0;
    }
    auto* const x = connection_.get();
    const xcb_res_client_id_spec_t client{.client = window, .mask = wanted};
    const XcbReply<xcb_res_query_client_ids_reply_t> reply(
        xcb_res_query_client_ids_reply(x, xcb_res_query_client_ids(x, 1, &client), nullptr));
    if (!reply) {
        return 0;
    }
    auto id = xcb_res_query_client_ids_ids_iterator(reply.get());
    for (; id.rem > 0; xcb_res_client_id_value_next(&id)) {
        if (id.data->spec.mask == wanted && xcb_res_client_id_value_value_length(id.data) == 1) {
            return *xcb_res_client_id_value_value(id.data);
        }
    }
    return 0;
}

} // namespace nocta
