#include "backends/linux/SessionFilter.h"

#include "contracts/DisplayFilterContract.h"

#include <gtest/gtest.h>

#include <memory>

namespace nocta {
namespace {

/// A fake filter that only stores whether the screen is gray.
class FakeGrayscale final : public GrayscaleFilter {
public:
    explicit FakeGrayscale(bool& isGray) : isGray_(isGray) {}
    bool isOn() override { return isGray_; }
    void setOn(bool on) override { isGray_ = on; }

private:
    bool& isGray_;
};

struct SessionFilterHarness {
    bool screenIsGray = false;
    SessionFilter filter{std::make_unique<FakeGrayscale>(screenIsGray)};

    DisplayFilter& displayFilter() { return filter; }
    DynamicLibraries& dynamicLibraries() { return filter; }
    bool isGray() const { return screenIsGray; }
};
} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Session, DisplayFilterContract, SessionFilterHarness);

namespace {

TEST(SessionFilter, GraySetByTheUserIsReadOnLaunch) {
    bool isGray = true;
    SessionFilter filter(std::make_unique<FakeGrayscale>(isGray));
    EXPECT_EQ(filter.getType(1), 1);
    EXPECT_TRUE(filter.getCategoryEnabled(1));
}

TEST(SessionFilter, OtherCategoriesChangeNothing) {
    bool isGray = false;
    SessionFilter filter(std::make_unique<FakeGrayscale>(isGray));
    filter.setType(2, 1);
    filter.setCategoryEnabled(2, true);
    filter.symbol(filter.open("/usr/lib/libUniversalAccess.dylib"), "_UniversalAccessDStart")(1);
    EXPECT_FALSE(isGray);
    EXPECT_EQ(filter.getType(2), 0);
    EXPECT_FALSE(filter.getCategoryEnabled(2));
}

TEST(SessionFilter, SessionWithoutAGrayFilterHasNoLibrary) {
    SessionFilter filter(nullptr);
    EXPECT_EQ(filter.open("/usr/lib/libUniversalAccess.dylib"), 0U);
    EXPECT_FALSE(filter.symbol(0, "_UniversalAccessDStart"));
}

TEST(SessionFilter, OtherLibrariesAndSymbolsAreMissing) {
    bool isGray = false;
    SessionFilter filter(std::make_unique<FakeGrayscale>(isGray));
    EXPECT_EQ(filter.open("/usr/lib/libOther.dylib"), 0U);
    const auto library = filter.open("/usr/lib/libUniversalAccess.dylib");
    EXPECT_FALSE(filter.symbol(library, "_Other"));
}

} // namespace
} // namespace nocta
