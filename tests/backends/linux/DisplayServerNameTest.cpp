#include "backends/linux/DisplayServerName.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace nocta {
namespace {

TEST(DisplayServerName, SameXServerAlwaysHasTheSameName) {
    for (const auto* const display : {":0", ":0.0", ":0.1", "unix:0", "unix:0.0", "unix:0.1"}) {
        EXPECT_EQ(xServerName(display), ":0") << display;
    }
}

TEST(DisplayServerName, DifferentXServersHaveDifferentNames) {
    std::set<std::string> names;
    for (const auto* const display :
         {":0", ":1", ":10", "remote:0", "remote:1", "other:0", "localhost:10"}) {
        EXPECT_TRUE(names.insert(xServerName(display)).second) << display;
    }
    EXPECT_EQ(xServerName("remote:0.1"), xServerName("remote:0"));
}

TEST(DisplayServerName, UnparsableNameIsUnchanged) {
    for (const auto* const display : {"", "nonsense", "no:number"}) {
        EXPECT_EQ(xServerName(display), display);
    }
}

TEST(DisplayServerName, WaylandSocketIsInTheRuntimeFolderUnlessItIsAnAbsolutePath) {
    EXPECT_EQ(waylandSocket("/run/user/1000", "wayland-0"), "/run/user/1000/wayland-0");
    EXPECT_EQ(waylandSocket("/run/user/1001", "wayland-0"), "/run/user/1001/wayland-0");
    EXPECT_EQ(waylandSocket("/run/user/1000/", "wayland-0"), "/run/user/1000/wayland-0");
    EXPECT_EQ(waylandSocket("/run/user/1000", "/tmp/compositor"), "/tmp/compositor");
    EXPECT_EQ(waylandSocket("/run/user/1001", "/run/user/1000/wayland-0"),
              "/run/user/1000/wayland-0");
}

} // namespace
} // namespace nocta
