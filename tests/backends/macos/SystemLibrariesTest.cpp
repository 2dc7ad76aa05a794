#include "backends/macos/SystemLibraries.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {
std::int32_t lastNumber = 0;
} // namespace

extern "C" {
/// Exported so that `dlsym` finds it by name, like an entry point of a library.
__attribute__((visibility("default"), used)) void noctaTestEntryPoint(std::int32_t number) {
    lastNumber = number;
}
}

namespace nocta {
namespace {

TEST(SystemLibraries, MissingLibraryHasNoHandle) {
    SystemLibraries libraries;
    EXPECT_EQ(libraries.open("/nowhere/libnocta.dylib"), 0U);
}

TEST(SystemLibraries, EntryPointIsCalledWithItsArgument) {
    SystemLibraries libraries;
    const auto program = reinterpret_cast<DynamicLibraries::Handle>(dlopen(nullptr, RTLD_NOW));
    const auto entryPoint = libraries.symbol(program, "noctaTestEntryPoint");
    ASSERT_TRUE(static_cast<bool>(entryPoint));
    lastNumber = 0;
    entryPoint(8);
    EXPECT_EQ(lastNumber, 8);
    libraries.close(program);
}

TEST(SystemLibraries, MissingEntryPointIsEmpty) {
    SystemLibraries libraries;
    const auto program = reinterpret_cast<DynamicLibraries::Handle>(dlopen(nullptr, RTLD_NOW));
    EXPECT_FALSE(static_cast<bool>(libraries.symbol(program, "noctaEntryPointOfNobody")));
    libraries.close(program);
}

} // namespace
} // namespace nocta
