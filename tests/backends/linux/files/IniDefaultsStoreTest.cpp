#include "backends/linux/files/IniDefaultsStore.h"

#include "backends/virtual/VirtualRunLoop.h"
#include "contracts/DefaultsStoreContract.h"
#include "support/FullDisk.h"
#include "support/ImmediateRunLoop.h"
#include "support/Process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace nocta {

struct IniDefaultsStoreHarness {
    TemporaryFolder folder;
    ImmediateRunLoop runLoop;
    std::string file = folder.path() + "/nocta/nocta.conf";
    DefaultsMap registered;
    std::optional<IniDefaultsStore> current;

    DefaultsStore& store() { return current ? *current : current.emplace(file, runLoop); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Ini, DefaultsStoreContract, IniDefaultsStoreHarness);

namespace {

namespace fs = std::filesystem;

class IniDefaultsStoreTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    mutable ImmediateRunLoop runLoop; // each change gets a separate turn
    std::string file = folder.path() + "/nocta/nocta.conf";

    void prepare(const std::string& content) const {
        fs::create_directories(folder.path() + "/nocta");
        writeFile(file, content);
    }

    /// Opens the store, sets a value, and returns the output on standard error.
    std::string saidWhenUsed() const {
        ::testing::internal::CaptureStderr();
        IniDefaultsStore store(file, runLoop);
        store.setDouble(0.3, "unifiedBrightness");
        store.setDouble(0.4, "unifiedBrightness");
        EXPECT_EQ(store.doubleForKey("unifiedBrightness"), 0.4) << "values should stay in memory";
        return ::testing::internal::GetCapturedStderr();
    }
    std::set<std::string> namesInFolder() const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder.path() + "/nocta")) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }
    static auto lines(const std::string& text) { return std::ranges::count(text, '\n'); }
};

TEST_F(IniDefaultsStoreTest, NothingIsWrittenBeforeTheFirstChange) {
    IniDefaultsStore store(file, runLoop);
    store.registerDefaults({{"a", 0.5}});
    store.removeObjectForKey("b");
    store.synchronize();
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(IniDefaultsStoreTest, ChangesInOneTurnAreWrittenOnceAfterTheScreenIsUpdated) {
    VirtualRunLoop loop;
    IniDefaultsStore store(file, loop);
    bool screenIsUpToDate = false;
    store.setDouble(0.75, "unifiedBrightness");
    loop.post([&] { // screen updates may follow the first change
        screenIsUpToDate = true;
        EXPECT_FALSE(fs::exists(file));
    });
    store.setDouble(0.5, "unifiedBrightness");
    store.setBool(false, "isFirstLaunch");
    EXPECT_EQ(store.doubleForKey("unifiedBrightness"), 0.5);
    loop.advance(Duration::zero());
    EXPECT_TRUE(screenIsUpToDate);
    EXPECT_EQ(contentOf(file), "[General]\nisFirstLaunch=false\nunifiedBrightness=0.5\n");
    fs::remove(file); // a second write would create the file again
    loop.advance(std::chrono::hours(1));
    EXPECT_FALSE(fs::exists(file)) << "nothing should be written without a new change";
}

TEST_F(IniDefaultsStoreTest, PendingChangesAreWrittenOnDestructionAndOnSynchronize) {
    VirtualRunLoop loop;
    std::optional<IniDefaultsStore> store(std::in_place, file, loop);
    store->setInteger(1, "a");
    store->synchronize();
    EXPECT_EQ(contentOf(file), "[General]\na=1\n");
    store->removeObjectForKey("a");
    store->setInteger(2, "b");
    store.reset();
    EXPECT_EQ(contentOf(file), "[General]\nb=2\n");
    loop.advance(Duration::zero()); // the action of the destroyed store must not run
}

TEST_F(IniDefaultsStoreTest, ChangesInEveryTurnAreWritten) {
    IniDefaultsStore store(file, runLoop);
    store.setDouble(0.6875, "unifiedBrightness");
    EXPECT_EQ(contentOf(file), "[General]\nunifiedBrightness=0.6875\n");
    store.setBool(false, "isFirstLaunch");
    store.setObject("leaf", "menuBarIcon");
    EXPECT_EQ(contentOf(file),
              "[General]\nunifiedBrightness=0.6875\nisFirstLaunch=false\nmenuBarIcon=leaf\n");
    store.removeObjectForKey("unifiedBrightness");
    EXPECT_EQ(contentOf(file), "[General]\nisFirstLaunch=false\nmenuBarIcon=leaf\n");
}

TEST_F(IniDefaultsStoreTest, AnotherStoreReadsTheWrittenValues) {
    {
        IniDefaultsStore store(file, runLoop);
        store.setDouble(1.0 / 3, "d");
        store.setInteger(-5, "i");
        store.setObject("true", "s");
        store.synchronize();
    }
    const IniDefaultsStore store(file, runLoop);
    EXPECT_EQ(store.doubleForKey("d"), 1.0 / 3);
    EXPECT_EQ(store.integerForKey("i"), -5);
    EXPECT_EQ(store.stringForKey("s"), "true");
}

TEST_F(IniDefaultsStoreTest, OnlyTheUserCanReadTheFile) {
    IniDefaultsStore store(file, runLoop);
    store.setBool(true, "a");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(IniDefaultsStoreTest, OnlyTheUserCanEnterTheFolderWithAnyUmask) {
    for (const mode_t mask : {0000U, 0022U, 0777U}) {
        const auto own = folder.path() + "/" + std::to_string(mask) + "/nocta";
        const auto before = umask(mask);
        IniDefaultsStore store(own + "/nocta.conf", runLoop);
        store.setBool(true, "a");
        umask(before);
        EXPECT_EQ(fs::status(own).permissions(), fs::perms::owner_all);
        EXPECT_EQ(fs::status(fs::path(own).parent_path()).permissions(), fs::perms::owner_all);
        EXPECT_TRUE(fs::exists(own + "/nocta.conf"));
    }
}

TEST_F(IniDefaultsStoreTest, ExistingFolderKeepsItsMode) {
    prepare("");
    fs::permissions(folder.path() + "/nocta", fs::perms(0750));
    IniDefaultsStore store(file, runLoop);
    store.setBool(true, "a");
    EXPECT_EQ(fs::status(folder.path() + "/nocta").permissions(), fs::perms(0750));
}

TEST_F(IniDefaultsStoreTest, UnparsableFileIsMovedAsideBeforeTheFirstWriteAndNothingIsLost) {
    const auto garbage = std::string("\x7f"
                                     "ELF\0\x01 no settings at all",
                                     25);
    prepare(garbage);
    const auto said = saidWhenUsed();
    EXPECT_EQ(lines(said), 1) << said;
    EXPECT_EQ(contentOf(file + ".damaged"), garbage);
    EXPECT_EQ(contentOf(file), "[General]\nunifiedBrightness=0.4\n");
}

TEST_F(IniDefaultsStoreTest, UnparsableFileIsNotMovedBeforeTheFirstWrite) {
    prepare("garbage");
    ::testing::internal::CaptureStderr();
    { const IniDefaultsStore store(file, runLoop); }
    ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(contentOf(file), "garbage");
}

TEST_F(IniDefaultsStoreTest, ReadableValuesOfATruncatedFileAreKept) {
    prepare("[General]\nwarmthLevel=0.25\nbreakInter");
    ::testing::internal::CaptureStderr();
    IniDefaultsStore store(file, runLoop);
    ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(store.doubleForKey("warmthLevel"), 0.25);
    store.setBool(true, "a");
    EXPECT_EQ(contentOf(file), "[General]\nwarmthLevel=0.25\na=true\n");
    EXPECT_EQ(contentOf(file + ".damaged"), "[General]\nwarmthLevel=0.25\nbreakInter");
}

TEST_F(IniDefaultsStoreTest, EarlierDamagedFileIsNotOverwritten) {
    prepare("garbage");
    writeFile(file + ".damaged", "the first");
    writeFile(file + ".damaged-2", "the second");
    saidWhenUsed();
    EXPECT_EQ(contentOf(file + ".damaged"), "the first");
    EXPECT_EQ(contentOf(file + ".damaged-2"), "the second");
    EXPECT_EQ(contentOf(file + ".damaged-3"), "garbage");
}

TEST_F(IniDefaultsStoreTest, FolderInPlaceOfTheFileIsMovedAside) {
    fs::create_directories(file + "/inside");
    const auto said = saidWhenUsed();
    EXPECT_EQ(lines(said), 1) << said;
    EXPECT_TRUE(fs::exists(file + ".damaged/inside"));
    EXPECT_EQ(contentOf(file), "[General]\nunifiedBrightness=0.4\n");
}

TEST_F(IniDefaultsStoreTest, UnreadableFileIsMovedAside) {
    fs::create_directories(folder.path() + "/nocta");
    fs::create_symlink("nocta.conf", file); // a link to itself, unreadable even for root
    const auto said = saidWhenUsed();
    EXPECT_EQ(lines(said), 1) << said;
    EXPECT_TRUE(fs::is_symlink(file + ".damaged"));
    EXPECT_EQ(contentOf(file), "[General]\nunifiedBrightness=0.4\n");
}

TEST_F(IniDefaultsStoreTest, HugeFileIsNotReadCompletely) {
    prepare("[General]\n");
    fs::resize_file(file, 1ULL << 40);
    saidWhenUsed();
    EXPECT_EQ(fs::file_size(file + ".damaged"), 1ULL << 40);
    EXPECT_EQ(contentOf(file), "[General]\nunifiedBrightness=0.4\n");
}

TEST_F(IniDefaultsStoreTest, NamedPipeDoesNotBlock) {
    fs::create_directories(folder.path() + "/nocta");
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    saidWhenUsed();
    EXPECT_TRUE(fs::is_fifo(file + ".damaged"));
}

TEST_F(IniDefaultsStoreTest, LinkedFileStaysALink) {
    prepare("");
    const auto target = folder.path() + "/elsewhere.conf";
    writeFile(target, "[General]\na=1\n");
    fs::remove(file);
    fs::create_symlink(target, file);
    IniDefaultsStore store(file, runLoop);
    store.setInteger(2, "a");
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(contentOf(target), "[General]\na=2\n");
}

TEST_F(IniDefaultsStoreTest, FolderThatCannotBeCreatedIsReportedOnce) {
    writeFile(folder.path() + "/nocta", "a file where the folder should be");
    const auto said = saidWhenUsed();
    EXPECT_EQ(lines(said), 1) << said;
    EXPECT_NE(said.find("cannot write"), std::string::npos);
}

TEST_F(IniDefaultsStoreTest, FullDiskKeepsTheOldFileAndIsReportedOnce) {
    prepare("[General]\na=1\n");
    IniDefaultsStore store(file, runLoop);
    FullDisk disk;
    store.setInteger(2, "a");
    store.setInteger(3, "a");
    store.synchronize();
    const auto said = disk.end();

    EXPECT_EQ(lines(said), 1) << said;
    EXPECT_NE(said.find("cannot write"), std::string::npos) << said;
    EXPECT_EQ(contentOf(file), "[General]\na=1\n");
    EXPECT_EQ(store.integerForKey("a"), 3);
    EXPECT_EQ(namesInFolder(), (std::set<std::string>{"nocta.conf", "nocta.conf.lock"}));
    store.setInteger(4, "a");
    EXPECT_EQ(contentOf(file), "[General]\na=4\n")
        << "writing should work once files can grow again";
}

TEST_F(IniDefaultsStoreTest, DamagedFileOnAFullDiskIsNotMoved) {
    prepare("[General]\na=1\ngarbage");
    FullDisk disk;
    IniDefaultsStore store(file, runLoop);
    store.setDouble(0.3, "unifiedBrightness");
    store.setDouble(0.4, "unifiedBrightness");
    const auto said = disk.end();
    EXPECT_EQ(lines(said), 2) << said; // one for reading and one for writing
    EXPECT_EQ(contentOf(file), "[General]\na=1\ngarbage");
    EXPECT_FALSE(fs::exists(file + ".damaged"));
}

TEST_F(IniDefaultsStoreTest, UnsearchableFolderIsReported) {
    prepare("[General]\na=1\n");
    fs::permissions(folder.path(), fs::perms::all);
    fs::permissions(folder.path() + "/nocta", fs::perms::owner_read);
    constexpr uid_t nobody = 65534;
    const auto self = geteuid();
    ASSERT_TRUE(self != 0 || seteuid(nobody) == 0); // root can search all folders
    const auto said = saidWhenUsed();
    ASSERT_EQ(seteuid(self), 0);
    fs::permissions(folder.path() + "/nocta", fs::perms::owner_all);
    EXPECT_NE(said.find("cannot write"), std::string::npos) << said;
    EXPECT_EQ(contentOf(file), "[General]\na=1\n");
}

TEST_F(IniDefaultsStoreTest, SynchronizeWritesOnlyPendingChanges) {
    IniDefaultsStore store(file, runLoop);
    store.setInteger(1, "a");
    writeFile(file, "[General]\na=5\n"); // as another program might do
    store.synchronize();
    EXPECT_EQ(contentOf(file), "[General]\na=5\n");
    {
        const FullDisk disk;
        store.setInteger(2, "a");
    }
    EXPECT_EQ(contentOf(file), "[General]\na=5\n");
    store.synchronize();
    EXPECT_EQ(contentOf(file), "[General]\na=2\n") << "the failed write should be retried";
}

TEST_F(IniDefaultsStoreTest, LinkToAMissingFileStaysALink) {
    fs::create_directories(folder.path() + "/nocta");
    fs::create_symlink("../elsewhere.conf", file);
    IniDefaultsStore store(file, runLoop);
    store.setInteger(2, "a");
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(contentOf(folder.path() + "/elsewhere.conf"), "[General]\na=2\n");
}

TEST_F(IniDefaultsStoreTest, FileIsIntactAfterAKillAtAnyTime) {
    // The child writes a counter to two keys, one after the other. After a kill, the first key must
    // be equal to the second or one higher.
    for (int round = 0; round < 40; ++round) {
        const auto child = fork();
        if (child == 0) {
            IniDefaultsStore store(file, runLoop);
            for (std::int64_t i = store.integerForKey("second") + 1;; ++i) {
                store.setInteger(i, "first");
                store.setInteger(i, "second");
            }
        }
        // Each round kills the child at a different time.
        std::this_thread::sleep_for(std::chrono::microseconds(500 + 137 * round));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        if (!fs::exists(file)) {
            continue; // killed before its first write
        }
        const auto document = IniDocument::parse(contentOf(file));
        ASSERT_TRUE(document.isWellFormed());
        const IniDefaultsStore store(file, runLoop);
        const auto first = store.integerForKey("first");
        const auto second = store.integerForKey("second");
        ASSERT_TRUE(first == second || first == second + 1) << first << " " << second;
    }
    EXPECT_TRUE(fs::exists(file));
    { const IniDefaultsStore nextStart(file, runLoop); }
    EXPECT_EQ(namesInFolder(), (std::set<std::string>{"nocta.conf", "nocta.conf.lock"}));
}

} // namespace
} // namespace nocta
