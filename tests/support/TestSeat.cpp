#include "support/TestSeat.h"

#include <cstddef>
#include <stdexcept>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>
#include <wayland-server.h>

namespace nocta {

namespace {

constexpr int version = 4; // later versions add requests and events that no test needs
constexpr std::uint32_t leftButton = 272;

constexpr std::string_view keymap = R"(xkb_keymap {
xkb_keycodes { minimum = 8; maximum = 255; <ESC> = 9; <SPCE> = 65; };
xkb_types { type "ONE_LEVEL" { modifiers = none; level_name[Level1] = "Any"; }; };
xkb_compatibility { };
xkb_symbols { key <ESC> { [ Escape ] }; key <SPCE> { [ space ] }; };
};
)";

void sendKeymap(wl_resource* keyboard) {
    const auto length = keymap.size() + 1; // including the terminating null
    const int file = memfd_create("keymap", MFD_CLOEXEC);
    if (write(file, keymap.data(), length) != static_cast<ssize_t>(length)) {
        throw std::runtime_error("cannot write the keymap");
    }
    wl_keyboard_send_keymap(keyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file,
                            static_cast<std::uint32_t>(length));
    close(file);
}

std::uint32_t nextSerial(wl_resource* resource) {
    return wl_display_next_serial(wl_client_get_display(wl_resource_get_client(resource)));
}

void destroy(wl_client* /*client*/, wl_resource* resource) {
    wl_resource_destroy(resource);
}

/// Calls `send` with each device of the client that owns the surface.
template <class Send>
void toDevicesOf(wl_resource* surface, const std::vector<wl_resource*>& devices, Send send) {
    for (auto* const device : devices) {
        if (surface != nullptr &&
            wl_resource_get_client(device) == wl_resource_get_client(surface)) {
            send(device);
        }
    }
}

} // namespace

struct TestSeat::Interfaces {
    static wl_resource* add(wl_client* client, wl_resource* seat, std::uint32_t id,
                            const wl_interface& interface, const void* requests,
                            Devices TestSeat::*devices, wl_resource_destroy_func_t forget) {
        auto* const self = static_cast<TestSeat*>(wl_resource_get_user_data(seat));
        auto* const device =
            wl_resource_create(client, &interface, wl_resource_get_version(seat), id);
        wl_resource_set_implementation(device, requests, self, forget);
        (self->*devices).push_back(device);
        return device;
    }

    template <Devices TestSeat::*devices>
    static void forget(wl_resource* device) {
        std::erase(static_cast<TestSeat*>(wl_resource_get_user_data(device))->*devices, device);
    }

    static void bind(wl_client* client, void* self, std::uint32_t bound, std::uint32_t id) {
        static constexpr struct wl_keyboard_interface keyboardRequests { .release = destroy };
        static constexpr struct wl_pointer_interface pointerRequests {
            .set_cursor = [](wl_client* /*client*/, wl_resource* /*pointer*/,
                             std::uint32_t /*serial*/, wl_resource* /*surface*/, std::int32_t /*x*/,
                             std::int32_t /*y*/) {},
            .release = destroy
        };
        static constexpr struct wl_seat_interface requests {
            .get_pointer =
                [](wl_client* asking, wl_resource* seat, std::uint32_t deviceId) {
                    add(asking, seat, deviceId, wl_pointer_interface, &pointerRequests,
                        &TestSeat::pointers_, forget<&TestSeat::pointers_>);
                },
            .get_keyboard =
                [](wl_client* asking, wl_resource* seat, std::uint32_t deviceId) {
                    auto* const keyboard =
                        add(asking, seat, deviceId, wl_keyboard_interface, &keyboardRequests,
                            &TestSeat::keyboards_, forget<&TestSeat::keyboards_>);
                    sendKeymap(keyboard);
                    wl_keyboard_send_repeat_info(keyboard, 0, 0);
                },
            .get_touch = [](wl_client* /*client*/, wl_resource* /*seat*/, std::uint32_t /*id*/) {},
            .release = destroy
        };
        auto* const seat =
            wl_resource_create(client, &wl_seat_interface, static_cast<int>(bound), id);
        wl_resource_set_implementation(seat, &requests, self, nullptr);
        wl_seat_send_name(seat, "seat0");
        wl_seat_send_capabilities(seat, WL_SEAT_CAPABILITY_KEYBOARD | WL_SEAT_CAPABILITY_POINTER);
    }
};

void TestSeat::offerOn(wl_display* display) {
    wl_global_create(display, &wl_seat_interface, version, this, Interfaces::bind);
}

void TestSeat::setKeyboardFocus(wl_resource* surface) {
    if (surface == keyboardFocus_) {
        return;
    }
    toDevicesOf(keyboardFocus_, keyboards_, [&](wl_resource* keyboard) {
        wl_keyboard_send_leave(keyboard, nextSerial(keyboard), keyboardFocus_);
    });
    keyboardFocus_ = surface;
    focusGains_ += surface == nullptr ? 0 : 1;
    toDevicesOf(surface, keyboards_, [&](wl_resource* keyboard) {
        wl_array pressed;
        wl_array_init(&pressed);
        wl_keyboard_send_enter(keyboard, nextSerial(keyboard), surface, &pressed);
        wl_keyboard_send_modifiers(keyboard, nextSerial(keyboard), 0, 0, 0, 0);
    });
}

void TestSeat::movePointer(wl_resource* surface, int x, int y) {
    toDevicesOf(pointerFocus_, pointers_, [&](wl_resource* pointer) {
        wl_pointer_send_leave(pointer, nextSerial(pointer), pointerFocus_);
    });
    pointerFocus_ = surface;
    toDevicesOf(surface, pointers_, [&](wl_resource* pointer) {
        wl_pointer_send_enter(pointer, nextSerial(pointer), surface, wl_fixed_from_int(x),
                              wl_fixed_from_int(y));
    });
}

void TestSeat::press(std::uint32_t key) {
    toDevicesOf(keyboardFocus_, keyboards_, [&](wl_resource* keyboard) {
        for (const auto state : {WL_KEYBOARD_KEY_STATE_PRESSED, WL_KEYBOARD_KEY_STATE_RELEASED}) {
            wl_keyboard_send_key(keyboard, nextSerial(keyboard), 0, key, state);
        }
    });
}

void TestSeat::click() {
    toDevicesOf(pointerFocus_, pointers_, [&](wl_resource* pointer) {
        for (const auto state :
             {WL_POINTER_BUTTON_STATE_PRESSED, WL_POINTER_BUTTON_STATE_RELEASED}) {
            wl_pointer_send_button(pointer, nextSerial(pointer), 0, leftButton, state);
        }
    });
}

void TestSeat::forget(wl_resource* surface) {
    keyboardFocus_ = keyboardFocus_ == surface ? nullptr : keyboardFocus_;
    pointerFocus_ = pointerFocus_ == surface ? nullptr : pointerFocus_;
}

} // namespace nocta
