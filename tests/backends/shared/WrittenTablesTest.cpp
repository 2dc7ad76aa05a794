#include "backends/shared/WrittenTables.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace nocta {
namespace {

constexpr DisplayId panel = 1;
constexpr DisplayId monitor = 2;

class WrittenTablesTest : public ::testing::Test {
protected:
    void write(DisplayId display, float level) {
        written.keep(display, std::array{level}, std::array{level + 1}, std::array{level + 2});
    }

    /// Returns a line for each display whose tables are resent, with its ID and the entries of its
    /// tables.
    std::string sentAgain() {
        std::string sent;
        written.forEach([&sent](DisplayId display, std::span<const float> red,
                                std::span<const float> green, std::span<const float> blue) {
            sent += std::to_string(display) + ':';
            for (const auto table : {red, green, blue}) {
                EXPECT_EQ(table.size(), 1U);
                sent += ' ' + std::to_string(static_cast<int>(table.front()));
            }
            sent += '\n';
        });
        return sent;
    }

    WrittenTables written;
};

TEST_F(WrittenTablesTest, NothingIsSentAgainBeforeTheFirstWrite) {
    written.keepOnly(std::array{panel, monitor});
    EXPECT_EQ(sentAgain(), "");
}

TEST_F(WrittenTablesTest, LastTablesOfEachDisplayAreSentAgain) {
    write(panel, 10);
    write(monitor, 20);
    write(panel, 30);
    EXPECT_EQ(sentAgain(), "1: 30 31 32\n2: 20 21 22\n");
    EXPECT_EQ(sentAgain(), "1: 30 31 32\n2: 20 21 22\n")
        << "the tables should be resent after every wake";
}

TEST_F(WrittenTablesTest, DisplayWithoutAWriteIsNotSentAgain) {
    write(panel, 10);
    written.keepOnly(std::array{panel, monitor});
    EXPECT_EQ(sentAgain(), "1: 10 11 12\n");
}

TEST_F(WrittenTablesTest, UnpluggedDisplayWaitsForTheNextWrite) {
    write(panel, 10);
    write(monitor, 20);
    written.keepOnly(std::array{panel});
    written.keepOnly(std::array{panel, monitor});
    EXPECT_EQ(sentAgain(), "1: 10 11 12\n");
    write(monitor, 30);
    EXPECT_EQ(sentAgain(), "1: 10 11 12\n2: 30 31 32\n");
}

TEST_F(WrittenTablesTest, TablesAreForgottenWithoutAnyDisplay) {
    write(panel, 10);
    written.keepOnly({});
    EXPECT_EQ(sentAgain(), "");
}

TEST_F(WrittenTablesTest, NothingIsSentAgainAfterTheScreenIsGivenBack) {
    write(panel, 10);
    written.clear();
    EXPECT_EQ(sentAgain(), "");
}

} // namespace
} // namespace nocta
