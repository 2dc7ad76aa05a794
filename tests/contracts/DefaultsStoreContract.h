#pragma once

#include "platform/DefaultsStore.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace nocta {

/// The contract of every defaults store. `Harness` has a `store()`.
template <class Harness>
class DefaultsStoreContract : public ::testing::Test {
protected:
    DefaultsStore& store() { return harness.store(); }
    Harness harness;
};

TYPED_TEST_SUITE_P(DefaultsStoreContract);

TYPED_TEST_P(DefaultsStoreContract, MissingKeyReadsAsZero) {
    EXPECT_EQ(this->store().doubleForKey("d"), 0.0);
    EXPECT_EQ(this->store().boolForKey("b"), false);
    EXPECT_EQ(this->store().integerForKey("i"), 0);
    EXPECT_EQ(this->store().stringForKey("s"), std::nullopt);
}

TYPED_TEST_P(DefaultsStoreContract, MissingKeyReadsAsItsRegisteredDefault) {
    this->store().registerDefaults(
        {{"d", 0.75}, {"b", true}, {"i", std::int64_t{20}}, {"s", "eye"}});
    EXPECT_EQ(this->store().doubleForKey("d"), 0.75);
    EXPECT_EQ(this->store().boolForKey("b"), true);
    EXPECT_EQ(this->store().integerForKey("i"), 20);
    EXPECT_EQ(this->store().stringForKey("s"), "eye");
}

TYPED_TEST_P(DefaultsStoreContract, StoredValueOverridesTheDefaultUntilItIsRemoved) {
    this->store().registerDefaults({{"d", 0.75}});
    this->store().setDouble(0.3, "d");
    EXPECT_EQ(this->store().doubleForKey("d"), 0.3);
    this->store().removeObjectForKey("d");
    EXPECT_EQ(this->store().doubleForKey("d"), 0.75);
}

TYPED_TEST_P(DefaultsStoreContract, ValuesReadBackExactly) {
    for (const auto value : {0.0, 1.0, 0.1, 1.0 / 3, -2.5, 1e-300, 1.7976931348623157e308}) {
        this->store().setDouble(value, "d");
        EXPECT_EQ(this->store().doubleForKey("d"), value);
    }
    for (const auto value :
         {std::int64_t{0}, std::int64_t{-7}, std::numeric_limits<std::int64_t>::max(),
          std::numeric_limits<std::int64_t>::min()}) {
        this->store().setInteger(value, "i");
        EXPECT_EQ(this->store().integerForKey("i"), value);
    }
    for (const auto value : {true, false}) {
        this->store().setBool(value, "b");
        EXPECT_EQ(this->store().boolForKey("b"), value);
    }
    for (const auto* const value :
         {"", "eye", "true", "12", "0.5", " padded ", "\"quoted\"", "a=b;c#d", "[General]",
          "two\nlines\r\n\tand \\ more", "\x01\x7f", "äöü 👁"}) {
        this->store().setObject(value, "s");
        EXPECT_EQ(this->store().stringForKey("s"), value);
    }
}

TYPED_TEST_P(DefaultsStoreContract, DataReadsBackExactlyAndOnlyAsData) {
    DefaultsData everyByte;
    for (int byte = 0; byte < 256; ++byte) {
        everyByte.bytes.push_back(static_cast<std::uint8_t>(byte));
    }
    const std::string json = R"({"totalBreaks":3,"text":"\"@\\"})";
    for (const auto& value :
         {DefaultsData{}, everyByte, DefaultsData{{json.begin(), json.end()}}}) {
        this->store().setObject(value, "data");
        EXPECT_EQ(this->store().dataForKey("data"), value);
        EXPECT_EQ(this->store().stringForKey("data"), std::nullopt);
        EXPECT_EQ(this->store().integerForKey("data"), 0);
    }
    this->store().setObject("@\"text\"", "s");
    EXPECT_EQ(this->store().dataForKey("s"), std::nullopt);
    EXPECT_EQ(this->store().stringForKey("s"), "@\"text\"");
    EXPECT_EQ(this->store().dataForKey("missing"), std::nullopt);
}

TYPED_TEST_P(DefaultsStoreContract, ReadingAValueAsTheWrongTypeGivesZero) {
    this->store().registerDefaults({{"n", 0.75}, {"s", "eye"}});
    this->store().setObject("moon", "n");
    EXPECT_EQ(this->store().doubleForKey("n"), 0.0);
    EXPECT_EQ(this->store().integerForKey("n"), 0);
    EXPECT_EQ(this->store().boolForKey("n"), false);
    this->store().setInteger(3, "s");
    EXPECT_EQ(this->store().stringForKey("s"), std::nullopt);
}

TYPED_TEST_P(DefaultsStoreContract, NumbersAreConvertedBetweenTypes) {
    this->store().setDouble(2.9, "d");
    EXPECT_EQ(this->store().integerForKey("d"), 2);
    EXPECT_EQ(this->store().boolForKey("d"), true);
    this->store().setDouble(1e300, "d");
    EXPECT_EQ(this->store().integerForKey("d"), 0) << "a number that does not fit should read as 0";
    this->store().setBool(true, "b");
    EXPECT_EQ(this->store().doubleForKey("b"), 1.0);
    this->store().setInteger(20, "i");
    EXPECT_EQ(this->store().doubleForKey("i"), 20.0);
}

REGISTER_TYPED_TEST_SUITE_P(DefaultsStoreContract, MissingKeyReadsAsZero,
                            MissingKeyReadsAsItsRegisteredDefault,
                            StoredValueOverridesTheDefaultUntilItIsRemoved, ValuesReadBackExactly,
                            DataReadsBackExactlyAndOnlyAsData, ReadingAValueAsTheWrongTypeGivesZero,
                            NumbersAreConvertedBetweenTypes);

} // namespace nocta
