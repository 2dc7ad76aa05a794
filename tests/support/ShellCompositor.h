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

/// A surface in a layer, as its client has described it.
struct TestLayer {
    std::string output; ///< empty if the client lets the compositor choose
    std::uint32_t layer = 0;
    std::uint32_t anchors = 0;
    std::int32_t exclusiveZone = 0;
    std::int32_t margin = 0; ///< from the top
    std::uint32_t keyboard = 0;
    std::uint32_t wantedWidth = 0;
    std::uint32_t wantedHeight = 0;
    bool acceptsInput = true;

    // The newest picture, in points; its alpha is from 0 to 255, in the middle.
    int width = 0;
    int height = 0;
    int alpha = 0;
};

struct TestSurface;

/// A Wayland compositor for tests that shows windows in layers. It gives the keyboard to the newest
/// surface that wants it for itself. Surfaces are counted from 0 among those in `mapped()`. Each
/// function returns when the compositor has done what it says.
class ShellCompositor {
public:
    /// Does not offer the interfaces in `withheld`.
    explicit ShellCompositor(const std::set<std::string>& withheld = {});
    ShellCompositor(const ShellCompositor&) = delete;
    ShellCompositor& operator=(const ShellCompositor&) = delete;
    ~ShellCompositor();

    TestCompositor& outputs() { return outputs_; }

    /// Closes the surfaces on the output and removes it.
    void removeOutput(const std::string& name = "DP-2");

    /// The surfaces with a picture, in the order in which they got their role.
    std::vector<TestLayer> mapped() const;

    /// Whether each surface in a layer has a picture for its newest configuration.
    bool isSettled() const;

    /// The surface that has the keyboard.
    std::optional<std::size_t> keyboardFocus() const;

    /// What a client has done that the protocol forbids.
    std::vector<std::string> violations() const;

    /// How many surfaces there are, of any kind.
    std::size_t surfaceCount() const;

    /// Tells new surfaces this size at first, not the one that they should have.
    void configureNew(std::uint32_t width, std::uint32_t height);
    /// Closes new surfaces at once, from now on.
    void closeNew();
    void configure(std::size_t surface, std::uint32_t width, std::uint32_t height);
    void close(std::size_t surface);

    void press(std::uint32_t key);
    /// Gives the keyboard to a window of another program.
    void takeKeyboard();
    void movePointer(std::size_t surface, int x, int y);
    /// The pointer is at this place of the surface that appears next.
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
    std::list<TestSurface> surfaces_; ///< those with a role in the order in which they got it
    std::vector<std::string> violations_;
    std::optional<std::pair<std::uint32_t, std::uint32_t>> newSize_;
    std::optional<std::pair<int, int>> newPointer_;
    bool closesNew_ = false;
    mutable TestCompositor outputs_; // destroyed first, because it ends the thread
};

} // namespace nocta
