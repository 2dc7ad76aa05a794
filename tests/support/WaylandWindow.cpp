// A program with one white window, for tests: nocta_wayland_window APP_ID TITLE. If APP_ID is
// empty, the window has no app ID. For each key press in the window, the program prints a line with
// the number of the key. The program exits when its window is closed or the compositor exits.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>
#include <xdg-shell-client-protocol.h>

namespace {

constexpr std::int32_t bytesPerPixel = 4;

struct Window {
    wl_compositor* compositor = nullptr;
    wl_shm* memory = nullptr;
    xdg_wm_base* shell = nullptr;
    wl_seat* seat = nullptr;
    wl_keyboard* keyboard = nullptr;
    wl_surface* surface = nullptr;
    std::int32_t width = 400;
    std::int32_t height = 300;
};

Window& of(void* data) {
    return *static_cast<Window*>(data);
}

/// Fills the window with white.
void draw(const Window& window) {
    const auto size = window.width * window.height * bytesPerPixel;
    const int file = memfd_create("window", MFD_CLOEXEC);
    auto* const pixels = ftruncate(file, size) == 0 ? mmap(nullptr, static_cast<std::size_t>(size),
                                                           PROT_WRITE, MAP_SHARED, file, 0)
                                                    : MAP_FAILED;
    if (pixels == MAP_FAILED) {
        std::exit(EXIT_FAILURE);
    }
    std::memset(pixels, 0xFF, static_cast<std::size_t>(size));
    munmap(pixels, static_cast<std::size_t>(size));
    auto* const pool = wl_shm_create_pool(window.memory, file, size);
    auto* const buffer = wl_shm_pool_create_buffer(
        pool, 0, window.width, window.height, window.width * bytesPerPixel, WL_SHM_FORMAT_XRGB8888);
    wl_shm_pool_destroy(pool);
    close(file);
    wl_surface_attach(window.surface, buffer, 0, 0);
    wl_surface_damage(window.surface, 0, 0, window.width, window.height);
    wl_surface_commit(window.surface);
}

constexpr wl_registry_listener registryListener{
    .global =
        [](void* data, wl_registry* registry, std::uint32_t name, const char* interface,
           std::uint32_t /*version*/) {
            const auto bind = [&](const wl_interface& wanted) {
                return std::string_view(interface) == wanted.name
                           ? wl_registry_bind(registry, name, &wanted, 1)
                           : nullptr;
            };
            if (auto* const compositor = bind(wl_compositor_interface)) {
                of(data).compositor = static_cast<wl_compositor*>(compositor);
            } else if (auto* const memory = bind(wl_shm_interface)) {
                of(data).memory = static_cast<wl_shm*>(memory);
            } else if (auto* const shell = bind(xdg_wm_base_interface)) {
                of(data).shell = static_cast<xdg_wm_base*>(shell);
            } else if (auto* const seat = bind(wl_seat_interface)) {
                of(data).seat = static_cast<wl_seat*>(seat);
            }
        },
    .global_remove = [](void* /*data*/, wl_registry* /*registry*/, std::uint32_t /*name*/) {}};

constexpr wl_keyboard_listener keyboardListener{
    .keymap = [](void* /*data*/, wl_keyboard* /*keyboard*/, std::uint32_t /*format*/, int file,
                 std::uint32_t /*size*/) { close(file); },
    .enter = [](void* /*data*/, wl_keyboard* /*keyboard*/, std::uint32_t /*serial*/,
                wl_surface* /*surface*/, wl_array* /*keys*/) {},
    .leave = [](void* /*data*/, wl_keyboard* /*keyboard*/, std::uint32_t /*serial*/,
                wl_surface* /*surface*/) {},
    .key =
        [](void* /*data*/, wl_keyboard* /*keyboard*/, std::uint32_t /*serial*/,
           std::uint32_t /*time*/, std::uint32_t key, std::uint32_t state) {
            if (state == WL_KEYBOARD_KEY_STATE_PRESSED) {
                std::cout << key << std::endl;
            }
        },
    .modifiers = [](void* /*data*/, wl_keyboard* /*keyboard*/, std::uint32_t /*serial*/,
                    std::uint32_t /*depressed*/, std::uint32_t /*latched*/,
                    std::uint32_t /*locked*/, std::uint32_t /*group*/) {},
    .repeat_info = [](void* /*data*/, wl_keyboard* /*keyboard*/, std::int32_t /*rate*/,
                      std::int32_t /*delay*/) {}};

/// Handles keyboards that are added or removed at run time.
constexpr wl_seat_listener seatListener{
    .capabilities =
        [](void* data, wl_seat* seat, std::uint32_t capabilities) {
            auto& window = of(data);
            const auto hasKeyboard = (capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0;
            if (hasKeyboard && window.keyboard == nullptr) {
                window.keyboard = wl_seat_get_keyboard(seat);
                wl_keyboard_add_listener(window.keyboard, &keyboardListener, data);
            } else if (!hasKeyboard && window.keyboard != nullptr) {
                wl_keyboard_destroy(window.keyboard);
                window.keyboard = nullptr;
            }
        },
    .name = [](void* /*data*/, wl_seat* /*seat*/, const char* /*name*/) {}};

constexpr xdg_wm_base_listener shellListener{
    .ping = [](void* /*data*/, xdg_wm_base* shell, std::uint32_t serial) {
        xdg_wm_base_pong(shell, serial);
    }};

constexpr xdg_surface_listener surfaceListener{
    .configure = [](void* data, xdg_surface* surface, std::uint32_t serial) {
        xdg_surface_ack_configure(surface, serial);
        draw(of(data));
    }};

constexpr xdg_toplevel_listener toplevelListener{
    .configure =
        [](void* data, xdg_toplevel* /*toplevel*/, std::int32_t width, std::int32_t height,
           wl_array* /*states*/) {
            if (width > 0 && height > 0) {
                of(data).width = width;
                of(data).height = height;
            }
        },
    .close = [](void* /*data*/, xdg_toplevel* /*toplevel*/) { std::exit(EXIT_SUCCESS); },
    .configure_bounds = [](void* /*data*/, xdg_toplevel* /*toplevel*/, std::int32_t /*width*/,
                           std::int32_t /*height*/) {},
    .wm_capabilities = [](void* /*data*/, xdg_toplevel* /*toplevel*/,
                          wl_array* /*capabilities*/) {}};

} // namespace

int main(int argc, char** argv) {
    auto* const display = wl_display_connect(nullptr);
    if (argc != 3 || display == nullptr) {
        return EXIT_FAILURE;
    }
    Window window;
    wl_registry_add_listener(wl_display_get_registry(display), &registryListener, &window);
    wl_display_roundtrip(display);
    if (window.compositor == nullptr || window.memory == nullptr || window.shell == nullptr) {
        return EXIT_FAILURE;
    }
    xdg_wm_base_add_listener(window.shell, &shellListener, &window);
    if (window.seat != nullptr) {
        wl_seat_add_listener(window.seat, &seatListener, &window);
    }
    window.surface = wl_compositor_create_surface(window.compositor);
    auto* const surface = xdg_wm_base_get_xdg_surface(window.shell, window.surface);
    xdg_surface_add_listener(surface, &surfaceListener, &window);
    auto* const toplevel = xdg_surface_get_toplevel(surface);
    xdg_toplevel_add_listener(toplevel, &toplevelListener, &window);
    if (*argv[1] != '\0') {
        xdg_toplevel_set_app_id(toplevel, argv[1]);
    }
    xdg_toplevel_set_title(toplevel, argv[2]);
    wl_surface_commit(window.surface);
    while (wl_display_dispatch(display) >= 0) {
    }
    return EXIT_SUCCESS;
}
