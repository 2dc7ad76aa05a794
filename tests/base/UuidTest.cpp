#include "base/Uuid.h"

#include <gtest/gtest.h>

namespace nocta {
namespace {

TEST(Uuid, IsWrittenInUpperCaseAndReadInEitherCase) {
    const auto uuid = Uuid::parse("0f8fad5b-d9cb-469f-a165-70867728950e");
    ASSERT_TRUE(uuid.has_value());
    EXPECT_EQ(uuid->toString(), "0F8FAD5B-D9CB-469F-A165-70867728950E");
    EXPECT_EQ(Uuid::parse(uuid->toString()), uuid);
}

TEST(Uuid, MalformedTextIsRejected) {
    for (const auto* const text :
         {"", "moon", "0f8fad5bd9cb469fa16570867728950e", "{0f8fad5b-d9cb-469f-a165-70867728950e}",
          "0f8fad5b-d9cb-469f-a165-70867728950", "0f8fad5b-d9cb-469f-a165-70867728950e ",
          "0f8fad5b-d9cb-469f-a165-70867728950g"}) {
        EXPECT_FALSE(Uuid::parse(text).has_value()) << text;
    }
    std::string withZero = "0f8fad5b-d9cb-469f-a165-70867728950e";
    withZero[30] = '\0';
    EXPECT_FALSE(Uuid::parse(withZero).has_value());
}

TEST(Uuid, RandomBytesBecomeAVersion4Identifier) {
    const auto ones = Uuid::fromRandomBytes(
        {255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255});
    EXPECT_EQ(ones.toString(), "FFFFFFFF-FFFF-4FFF-BFFF-FFFFFFFFFFFF");
    EXPECT_EQ(Uuid::fromRandomBytes({}).toString(), "00000000-0000-4000-8000-000000000000");
}

} // namespace
} // namespace nocta
