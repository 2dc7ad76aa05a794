// Tests a settings file that several processes share, for example one process for each display. The
// tests include killed writers and unexpected files next to the settings file.

#include "backends/linux/files/FileDescriptor.h"
#include "backends/linux/files/IniDefaultsStore.h"
#include "support/FullDisk.h"
#include "support/ImmediateRunLoop.h"
#include "support/Process.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/file.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace nocta {
namespace {

namespace fs = std::filesystem;

class SharedSettingsFileTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    ImmediateRunLoop runLoop; // each change gets a separate turn
    std::string file = folder.path() + "/nocta.conf";

    /// Returns the ID of a process that has exited.
    static pid_t endedProcess() {
        const auto child = fork();
        if (child == 0) {
            _exit(0);
        }
        waitpid(child, nullptr, 0);
        return child;
    }
};

TEST_F(SharedSettingsFileTest, WriterKeepsTheChangesOfOtherWriters) {
    writeFile(file, "[General]\na=1\nb=1\n");
    IniDefaultsStore first(file, runLoop);
    IniDefaultsStore second(file, runLoop);
    first.setInteger(2, "a");
    second.setInteger(2, "b");
    EXPECT_EQ(contentOf(file), "[General]\na=2\nb=2\n");
    first.setInteger(3, "c");
    second.setInteger(3, "d");
    EXPECT_EQ(contentOf(file), "[General]\na=2\nb=2\nc=3\nd=3\n");
}

TEST_F(SharedSettingsFileTest, LastChangeOfAKeyWins) {
    writeFile(file, "[General]\na=1\n");
    IniDefaultsStore first(file, runLoop);
    IniDefaultsStore second(file, runLoop);
    first.setInteger(2, "a");
    second.setInteger(3, "a");
    EXPECT_EQ(contentOf(file), "[General]\na=3\n");
    first.removeObjectForKey("a");
    EXPECT_EQ(contentOf(file), "[General]\n");
    second.setInteger(1, "b");
    EXPECT_EQ(contentOf(file), "[General]\nb=1\n") << "the removed key should stay removed";
    second.setInteger(4, "a");
    first.setInteger(2, "b");
    EXPECT_EQ(contentOf(file), "[General]\nb=2\na=4\n")
        << "the first store should not remove the key again";
}

TEST_F(SharedSettingsFileTest, KeySetByAnotherProcessCanBeRemoved) {
    IniDefaultsStore first(file, runLoop);
    IniDefaultsStore second(file, runLoop);
    second.setInteger(1, "a");
    first.removeObjectForKey("a");
    EXPECT_EQ(contentOf(file), "[General]\n");
}

TEST_F(SharedSettingsFileTest, EachProcessHasItsOwnValuesInMemory) {
    IniDefaultsStore first(file, runLoop);
    IniDefaultsStore second(file, runLoop);
    first.setInteger(1, "a");
    second.setInteger(2, "a");
    second.setInteger(2, "b");
    first.setInteger(1, "c");
    EXPECT_EQ(first.integerForKey("a"), 1);
    EXPECT_FALSE(first.stringForKey("b").has_value());
    EXPECT_EQ(first.integerForKey("b"), 0);
}

TEST_F(SharedSettingsFileTest, FailedChangeIsMergedLater) {
    IniDefaultsStore store(file, runLoop);
    {
        const FullDisk disk;
        store.setInteger(1, "a");
    }
    writeFile(file, "[General]\na=7\nb=7\n");
    store.setInteger(1, "c");
    EXPECT_EQ(contentOf(file), "[General]\na=1\nb=7\nc=1\n");
}

TEST_F(SharedSettingsFileTest, MissingFileIsWrittenCompletely) {
    writeFile(file, "[General]\na=1\n");
    IniDefaultsStore store(file, runLoop);
    fs::remove(file);
    store.setInteger(1, "b");
    EXPECT_EQ(contentOf(file), "[General]\na=1\nb=1\n");
}

TEST_F(SharedSettingsFileTest, FileDamagedAfterReadingIsMovedAside) {
    writeFile(file, "[General]\na=1\n");
    IniDefaultsStore store(file, runLoop);
    writeFile(file, "[General]\nb=1\ngarbage");
    ::testing::internal::CaptureStderr();
    store.setInteger(2, "a");
    EXPECT_NE(::testing::internal::GetCapturedStderr().find("it will be moved aside"),
              std::string::npos);
    EXPECT_EQ(contentOf(file), "[General]\na=2\n");
    EXPECT_EQ(contentOf(file + ".damaged"), "[General]\nb=1\ngarbage");
}

TEST_F(SharedSettingsFileTest, ConcurrentWritersDoNotLoseChanges) {
    constexpr int writers = 3;
    constexpr int keys = 100;
    std::vector<pid_t> children;
    for (int writer = 0; writer < writers; ++writer) {
        children.push_back(fork());
        if (children.back() == 0) {
            // The timeout is long enough for busy machines.
            IniDefaultsStore store(file, runLoop, std::chrono::minutes(1));
            for (int key = 0; key < keys; ++key) {
                store.setInteger(key, std::to_string(writer) + "-" + std::to_string(key));
            }
            _exit(0);
        }
    }
    for (const auto child : children) {
        waitpid(child, nullptr, 0);
    }
    EXPECT_EQ(IniDocument::parse(contentOf(file)).values().size(), std::size_t{writers * keys});
}

TEST_F(SharedSettingsFileTest, UnreleasedLockDoesNotBlock) {
    const auto lock = open((file + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(lock, LOCK_EX | LOCK_NB), 0);
    IniDefaultsStore store(file, runLoop);
    store.setInteger(1, "a");
    EXPECT_EQ(contentOf(file), "[General]\na=1\n");
    close(lock);
}

TEST_F(SharedSettingsFileTest, UnexpectedFileInPlaceOfTheLockDoesNotBlock) {
    const auto lock = file + ".lock";
    const auto other = folder.path() + "/other";
    writeFile(other, "other");
    const auto expectWritten = [&](std::int64_t value) {
        IniDefaultsStore store(file, runLoop);
        store.setInteger(value, "a");
        EXPECT_EQ(contentOf(file), "[General]\na=" + std::to_string(value) + "\n");
        fs::remove_all(lock);
    };
    ASSERT_EQ(mkfifo(lock.c_str(), 0600), 0);
    expectWritten(1);
    fs::create_directory(lock);
    expectWritten(2);
    fs::create_symlink(other, lock);
    expectWritten(3);
    fs::create_symlink(folder.path() + "/missing", lock);
    expectWritten(4);
    EXPECT_EQ(contentOf(other), "other");
    EXPECT_FALSE(fs::exists(folder.path() + "/missing"))
        << "the target of the link should not be created";
}

TEST_F(SharedSettingsFileTest, UnexpectedFilesBesideTheSettingsAreNotWrittenAndDoNotBlock) {
    const auto other = folder.path() + "/other";
    writeFile(other, "other");
    fs::create_hard_link(other, file);
    IniDefaultsStore store(file, runLoop);
    ::testing::internal::CaptureStderr(); // hides the warning about the damaged file
    store.setInteger(1, "a");
    ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(contentOf(other), "other");

    for (const auto& name : {file + ".new", file + ".new-" + std::to_string(getpid())}) {
        ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
        store.setInteger(2, "a");
        fs::remove(name);
        fs::create_hard_link(other, name);
        store.setInteger(3, "a");
    }
    EXPECT_EQ(contentOf(file), "[General]\na=3\n");
    EXPECT_EQ(contentOf(other), "other");
}

TEST_F(SharedSettingsFileTest, TemporaryFileNameContainsTheProcessId) {
    IniDefaultsStore store(file, runLoop);
    const FileDescriptor watch(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    inotify_add_watch(watch.get(), folder.path().c_str(), IN_MOVED_FROM);
    store.setInteger(1, "a");
    alignas(inotify_event) std::array<char, 1024> events{};
    ASSERT_GT(read(watch.get(), events.data(), events.size()), 0);
    const auto* const name = reinterpret_cast<const inotify_event*>(events.data())->name;
    EXPECT_TRUE(std::string(name).starts_with("nocta.conf.new-" + std::to_string(getpid()) + "-"))
        << name;
}

TEST_F(SharedSettingsFileTest, OnlyTemporaryFilesOfKilledWritersAreRemoved) {
    const auto dead = file + ".new-" + std::to_string(endedProcess());
    const auto alive = file + ".new-" + std::to_string(getpid());
    const std::vector<std::string> kept = {
        alive + "-abcdef", // another program may be about to rename it
        dead,
        dead + "-abcde",
        dead + "-abcdefg",
        dead + ".abcdef",
        file + ".new",
        file + ".new-x-abcdef",
        file + ".new--" + std::to_string(endedProcess()) + "-abcdef",
        file + ".new-0-abcdef",
        folder.path() + "/other.conf.new-" + std::to_string(endedProcess()) + "-abcdef"};
    for (const auto& name : kept) {
        writeFile(name, "kept");
    }
    fs::create_directory(dead + "-folder");
    fs::create_symlink(kept.front(), dead + "-links1");
    writeFile(dead + "-abcdef", "left");
    writeFile(dead + "-XYZ012", "left");

    { const IniDefaultsStore store(file, runLoop); }
    EXPECT_FALSE(fs::exists(dead + "-abcdef"));
    EXPECT_FALSE(fs::exists(dead + "-XYZ012"));
    for (const auto& name : kept) {
        EXPECT_EQ(contentOf(name), "kept") << name;
    }
    EXPECT_TRUE(fs::is_directory(dead + "-folder"));
    EXPECT_TRUE(fs::is_symlink(dead + "-links1"));
}

TEST_F(SharedSettingsFileTest, TemporaryFileIsKeptWhileAnotherProcessWrites) {
    const auto left = file + ".new-" + std::to_string(endedProcess()) + "-abcdef";
    writeFile(left, "left");
    const auto lock = open((file + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(lock, LOCK_EX | LOCK_NB), 0);
    { const IniDefaultsStore store(file, runLoop); }
    EXPECT_TRUE(fs::exists(left));
    close(lock);
    { const IniDefaultsStore store(file, runLoop); }
    EXPECT_FALSE(fs::exists(left));
}

} // namespace
} // namespace nocta
