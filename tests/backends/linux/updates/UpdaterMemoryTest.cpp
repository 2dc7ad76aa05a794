#include "backends/linux/updates/UpdaterMemory.h"

#include "support/Process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

namespace nocta {
namespace {

using namespace std::chrono_literals;

const UpdaterRecord decided = {.checksAutomatically = false,
                               .downloadsAutomatically = true,
                               .lastCheck = WallTime(1795262400s),
                               .skippedVersion = "46\n\"🌙"};

TEST(UpdaterMemory, RecordIsStoredInAFile) {
    const TemporaryFolder folder;
    const auto file = folder.path() + "/new/updates.json";
    {
        UpdaterMemory memory(file);
        EXPECT_FALSE(memory.isKept());
        EXPECT_EQ(memory.record(), UpdaterRecord());
        memory.update([](UpdaterRecord& record) { record = decided; });
    }
    UpdaterMemory memory(file);
    EXPECT_TRUE(memory.isKept());
    EXPECT_EQ(memory.record(), decided);
    memory.update([](UpdaterRecord& record) { record = {}; });
    EXPECT_EQ(UpdaterMemory(file).record(), UpdaterRecord());
    EXPECT_TRUE(UpdaterMemory(file).isKept());
}

TEST(UpdaterMemory, RecordThatCannotBeWrittenStaysInMemory) {
    const TemporaryFolder folder;
    writeFile(folder.path() + "/file", "");
    UpdaterMemory memory(folder.path() + "/file/updates.json");
    memory.update([](UpdaterRecord& record) { record = decided; });
    EXPECT_EQ(memory.record(), decided);
    EXPECT_EQ(contentOf(folder.path() + "/file"), "");
}

TEST(UpdaterMemory, InvalidRecordCountsAsMissing) {
    for (const auto* const text :
         {"", "{", "[]", "null", "1", "\"x\"", "{}", R"({"lastCheck":"x"})", R"({"lastCheck":1.5})",
          R"({"lastCheck":-1})", R"({"lastCheck":99999999999999999})",
          R"({"lastCheck":99999999999999999999999})", R"({"checksAutomatically":1})",
          R"({"downloadsAutomatically":"true"})", R"({"skippedVersion":7})", "\xFF\xFE{}"}) {
        EXPECT_EQ(parseUpdaterRecord(text), UpdaterRecord()) << text;
    }
    EXPECT_EQ(parseUpdaterRecord(R"({"checksAutomatically":true,"lastCheck":[],"other":1})"),
              (UpdaterRecord{.checksAutomatically = true}));
}

TEST(UpdaterMemory, FolderAndEndlessFileAreNotRead) {
    const TemporaryFolder folder;
    EXPECT_FALSE(UpdaterMemory(folder.path()).isKept());
    EXPECT_FALSE(UpdaterMemory("/dev/zero").isKept());
}

} // namespace
} // namespace nocta
