#pragma once

#include "support/TestCompositor.h"
#include "support/TestSeat.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace nocta {

/// The state of a layer surface, as set by its client.
struct TestLayer {
    std::string output; ///< empty if the client lets the compositor choose
    std::uint32_t layer = 0;
    std::uint32_t anchors = 0;
    std::int32_t exclusiveZone = 0;
    std::int32_t margin = 0; ///< the top margin
    std::uint32_t keyboard = 0;
    std::uint32_t wantedWidth = 0;
    std::uint32_t wantedHeight = 0;
    bool acceptsInput = true;

    // The latest buffer: its size in points, and the alpha of its center pixel (0–255).
    int width = 0;
    int height = 0;
    int alpha = 0;
};

struct TestSurface;

/// A Wayland compositor for tests that supports layer surfaces. It gives keyboard focus to the
/// newest surface that requests it exclusively. The index of a surface is its position in
/// `mapped()`. Each function returns after its action has run in the compositor.
class ShellCompositor {
public:
    /// The compositor does not offer the interfaces in `withheld`.
    explicit ShellCompositor(const std::set<std::string>& withheld = {});
    ShellCompositor(const ShellCompositor&) = delete;
    ShellCompositor& operator=(const ShellCompositor&) = delete;
    ~ShellCompositor();

    TestCompositor& outputs() { return outputs_; }

    /// Closes the surfaces on the output and removes it.
    void removeOutput(const std::string& name = "DP-2");

    /// The surfaces with a buffer, in the order in which they got their role.
    std::vector<TestLayer> mapped() const;

    /// Whether each layer surface has a buffer for its latest configuration.
    bool isSettled() const;

    /// The surface with keyboard focus.
    std::optional<std::size_t> keyboardFocus() const;
    /// The number of times that a surface has gained keyboard focus.
    int focusGains() const;

    /// Protocol violations by clients.
    std::vector<std::string> violations() const;

    /// The number of surfaces of any kind.
    std::size_t surfaceCount() const;

    /// Sends new surfaces this initial size instead of the correct one.
    void configureNew(std::uint32_t width, std::uint32_t height);
    /// From now on, closes each new surface immediately.
    void closeNew();
    void configure(std::size_t surface, std::uint32_t width, std::uint32_t height);
    void close(std::size_t surface);

    void press(std::uint32_t key);
    /// Moves keyboard focus to a window of another program. That window keeps the focus until a new
    /// surface requests it.
    void takeKeyboard();
    void movePointer(std::size_t surface, int x, int y);
    /// Moves the pointer to this position in the next surface when that surface appears.
    void putPointerIntoNext(int x, int y);
    void click();

private:
    struct Interfaces;
    friend struct TestSurface;

    void call(const std::function<void()>& action) const { outputs_.thread().call(action); }
    std::vector<TestSurface*> mappedSurfaces() const;
    void close(TestSurface& surface);
    void appears(TestSurface& surface);
    void updateKeyboardFocus();

    TestSeat seat_;
    std::list<TestSurface> surfaces_; ///< surfaces with a role are in the order of their roles
    std::vector<std::string> violations_;
    std::optional<std::pair<std::uint32_t, std::uint32_t>> newSize_;
    std::optional<std::pair<int, int>> newPointer_;
    bool closesNew_ = false;
    mutable TestCompositor outputs_; // destroyed first, because it ends the thread
};

} // namespace nocta
