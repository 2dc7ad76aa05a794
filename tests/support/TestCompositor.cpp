#include "support/TestCompositor.h"

#include "support/TestOutput.h"

#include <algorithm>
#include <fcntl.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>
#include <wayland-server.h>
#include <wlr-gamma-control-unstable-v1-server-protocol.h>
#include <wlr-output-power-management-unstable-v1-server-protocol.h>
#include <xdg-output-unstable-v1-server-protocol.h>

namespace nocta {

namespace {

constexpr int firstVersionWithoutDone = 3; // of xdg-output

void destroy(wl_client* /*client*/, wl_resource* resource) {
    wl_resource_destroy(resource);
}

} // namespace

/// The requests that clients can make. The user data of a manager is the compositor; that of any
/// other resource is an output.
struct TestCompositor::Interfaces {
    static TestOutput& outputOf(wl_resource* resource) {
        return *static_cast<TestOutput*>(wl_resource_get_user_data(resource));
    }

    static void bindOutput(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
        static constexpr struct wl_output_interface requests { .release = destroy };
        auto& output = *static_cast<TestOutput*>(data);
        output.compositor->countRequest();
        auto* const resource =
            wl_resource_create(client, &wl_output_interface, static_cast<int>(version), id);
        wl_resource_set_implementation(resource, &requests, data, nullptr);
        wl_output_send_geometry(resource, output.x, 0, 0, 0, WL_OUTPUT_SUBPIXEL_UNKNOWN, "", "",
                                WL_OUTPUT_TRANSFORM_NORMAL);
        wl_output_send_mode(resource, WL_OUTPUT_MODE_CURRENT, TestOutput::width, TestOutput::height,
                            0);
        if (version >= WL_OUTPUT_NAME_SINCE_VERSION) {
            wl_output_send_name(resource, output.name.c_str());
        }
        wl_output_send_done(resource);
    }

    static void bindLogical(wl_client* client, void* data, std::uint32_t version,
                            std::uint32_t id) {
        static constexpr struct zxdg_output_v1_interface logicalRequests { .destroy = destroy };
        static constexpr struct zxdg_output_manager_v1_interface requests {
            .destroy = destroy, .get_xdg_output = [](wl_client* asking, wl_resource* manager,
                                                     std::uint32_t logicalId, wl_resource* of) {
                auto& output = outputOf(of);
                output.compositor->countRequest();
                auto* const logical = wl_resource_create(
                    asking, &zxdg_output_v1_interface, wl_resource_get_version(manager), logicalId);
                wl_resource_set_implementation(logical, &logicalRequests, &output, nullptr);
                zxdg_output_v1_send_logical_position(logical, output.x, 0);
                zxdg_output_v1_send_logical_size(logical, TestOutput::width, TestOutput::height);
                if (wl_resource_get_version(logical) >= ZXDG_OUTPUT_V1_NAME_SINCE_VERSION) {
                    zxdg_output_v1_send_name(logical, output.name.c_str());
                }
                if (wl_resource_get_version(logical) < firstVersionWithoutDone) {
                    zxdg_output_v1_send_done(logical);
                } else {
                    wl_output_send_done(of);
                }
            }
        };
        auto* const manager = wl_resource_create(client, &zxdg_output_manager_v1_interface,
                                                 static_cast<int>(version), id);
        wl_resource_set_implementation(manager, &requests, data, nullptr);
    }

    static void bindGamma(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
        static constexpr struct zwlr_gamma_control_v1_interface controlRequests {
            .set_gamma =
                [](wl_client* /*client*/, wl_resource* control, int file) {
                    auto& output = outputOf(control);
                    output.compositor->countRequest();
                    if (output.control == control) {
                        output.compositor->setGamma(output, file);
                    }
                    close(file);
                },
            .destroy = destroy
        };
        static constexpr struct zwlr_gamma_control_manager_v1_interface requests {
            .get_gamma_control =
                [](wl_client* asking, wl_resource* /*manager*/, std::uint32_t controlId,
                   wl_resource* of) {
                    auto& output = outputOf(of);
                    auto* const control =
                        wl_resource_create(asking, &zwlr_gamma_control_v1_interface, 1, controlId);
                    wl_resource_set_implementation(
                        control, &controlRequests, &output, [](wl_resource* ended) {
                            if (auto& holder = outputOf(ended); holder.control == ended) {
                                holder.restore();
                            }
                        });
                    output.compositor->countRequest();
                    output.compositor->requestGamma(output, control);
                },
            .destroy = destroy
        };
        auto* const manager = wl_resource_create(client, &zwlr_gamma_control_manager_v1_interface,
                                                 static_cast<int>(version), id);
        wl_resource_set_implementation(manager, &requests, data, nullptr);
    }

    static void bindPower(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
        static constexpr struct zwlr_output_power_v1_interface powerRequests {
            .set_mode = [](wl_client* /*client*/, wl_resource* /*power*/,
                           std::uint32_t /*mode*/) {},
            .destroy = destroy
        };
        static constexpr struct zwlr_output_power_manager_v1_interface requests {
            .get_output_power =
                [](wl_client* asking, wl_resource* /*manager*/, std::uint32_t powerId,
                   wl_resource* of) {
                    auto& output = outputOf(of);
                    auto* const power =
                        wl_resource_create(asking, &zwlr_output_power_v1_interface, 1, powerId);
                    wl_resource_set_implementation(
                        power, &powerRequests, &output,
                        [](wl_resource* ended) { std::erase(outputOf(ended).powers, ended); });
                    output.powers.push_back(power);
                    output.compositor->countRequest();
                    if (output.isRemoved) {
                        zwlr_output_power_v1_send_failed(power);
                    } else {
                        output.tellPower(power);
                    }
                },
            .destroy = destroy
        };
        auto* const manager = wl_resource_create(client, &zwlr_output_power_manager_v1_interface,
                                                 static_cast<int>(version), id);
        wl_resource_set_implementation(manager, &requests, data, nullptr);
    }
};

TestCompositor::TestCompositor() {
    thread_.call([this] {
        auto* const display = thread_.display();
        wl_global_create(display, &zxdg_output_manager_v1_interface, 3, this,
                         Interfaces::bindLogical);
        wl_global_create(display, &zwlr_output_power_manager_v1_interface, 1, this,
                         Interfaces::bindPower);
    });
    offerGammaManager();
    addOutput("DP-1", 0);
}

TestCompositor::~TestCompositor() = default;

void TestCompositor::addOutput(const std::string& name, int x) {
    thread_.call([&] {
        auto& output = outputs_.emplace_back(TestOutput{.compositor = this, .name = name, .x = x});
        output.global = wl_global_create(thread_.display(), &wl_output_interface, 4, &output,
                                         Interfaces::bindOutput);
    });
}

void TestCompositor::removeOutput(const std::string& name) {
    thread_.call([&] { remove(find(name)); });
}

void TestCompositor::removeOutputAtRequest(const std::string& name, int request) {
    thread_.call([&] {
        removalName_ = name;
        removalRequest_ = request;
    });
}

int TestCompositor::outputRequests() const {
    int requests = 0;
    thread_.call([&] { requests = requests_; });
    return requests;
}

void TestCompositor::respond(const std::string& name, Response response, std::uint32_t size) {
    thread_.call([&] {
        find(name).response = response;
        find(name).size = size;
    });
}

void TestCompositor::respondLate(const std::string& name) {
    thread_.call([&] { find(name).tellSize(); });
}

void TestCompositor::revokeGamma(const std::string& name) {
    thread_.call([&] { find(name).failControl(); });
}

void TestCompositor::withdrawGammaManager() {
    thread_.call([&] { wl_global_remove(gammaManager_); });
}

void TestCompositor::offerGammaManager() {
    thread_.call([&] {
        gammaManager_ =
            wl_global_create(thread_.display(), &zwlr_gamma_control_manager_v1_interface, 1, this,
                             Interfaces::bindGamma);
    });
}

void TestCompositor::setPower(const std::string& name, bool isOn) {
    thread_.call([&] {
        auto& output = find(name);
        output.isOn = isOn;
        for (auto* const power : output.powers) {
            output.tellPower(power);
        }
    });
}

void TestCompositor::disconnectClients() {
    thread_.call([&] { wl_display_destroy_clients(thread_.display()); });
}

void TestCompositor::disconnectAtNextTable() {
    thread_.call([&] { disconnectsAtTable_ = true; });
}

std::vector<std::vector<std::uint16_t>> TestCompositor::gammaOf(const std::string& name) const {
    std::vector<std::vector<std::uint16_t>> gamma;
    thread_.call([&] { gamma = find(name).gamma; });
    return gamma;
}

int TestCompositor::gammaRequests(const std::string& name) const {
    int requests = 0;
    thread_.call([&] { requests = find(name).gammaRequests; });
    return requests;
}

/// The newest output with this name.
TestOutput& TestCompositor::find(const std::string& name) const {
    const auto output = std::find_if(outputs_.rbegin(), outputs_.rend(),
                                     [&](const TestOutput& known) { return known.name == name; });
    if (output == outputs_.rend()) {
        throw std::runtime_error("there is no output " + name);
    }
    return const_cast<TestOutput&>(*output);
}

void TestCompositor::remove(TestOutput& output) {
    wl_global_remove(output.global);
    output.isRemoved = true;
    output.failControl();
    for (auto* const power : output.powers) {
        zwlr_output_power_v1_send_failed(power);
    }
}

void TestCompositor::countRequest() {
    if (++requests_ == removalRequest_) {
        remove(find(removalName_));
    }
}

void TestCompositor::requestGamma(TestOutput& output, wl_resource* control) {
    ++output.gammaRequests;
    if (output.isRemoved || output.control != nullptr || output.response == Response::refusal) {
        zwlr_gamma_control_v1_send_failed(control);
        return;
    }
    output.control = control;
    if (output.response == Response::size) {
        output.tellSize();
    }
}

void TestCompositor::setGamma(TestOutput& output, int file) {
    if (std::exchange(disconnectsAtTable_, false)) {
        shutdown(wl_client_get_fd(wl_resource_get_client(output.control)), SHUT_RDWR);
        return;
    }
    std::vector<std::uint16_t> levels(3 * std::size_t{output.size});
    const auto length = levels.size() * sizeof levels[0];
    constexpr auto allSeals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL;
    if (read(file, levels.data(), length) != static_cast<ssize_t>(length) ||
        fcntl(file, F_GET_SEALS) != allSeals) {
        wl_resource_post_error(output.control, ZWLR_GAMMA_CONTROL_V1_ERROR_INVALID_GAMMA,
                               "the file is too short or not sealed");
        return;
    }
    output.gamma.push_back(std::move(levels));
}

} // namespace nocta
