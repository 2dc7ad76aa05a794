#include "backends/linux/fetch/DebianPackage.h"

#include "support/DebianFile.h"
#include "support/Process.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace nocta {
namespace {

std::optional<Package> read(const std::string& bytes) {
    return readDebianPackage({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
}

const Package expected{.name = "nocta", .version = "1.3-1", .architecture = "amd64"};

TEST(DebianPackage, ControlDataAreRead) {
    EXPECT_EQ(read(DebianFile().bytes()), expected);
}

TEST(DebianPackage, EveryCompressionOfDebianIsRead) {
    const DebianFile file;
    for (const auto& [name, filter] :
         {std::pair{"control.tar", &archive_write_add_filter_none},
          std::pair{"control.tar.gz", &archive_write_add_filter_gzip},
          std::pair{"control.tar.xz", &archive_write_add_filter_xz},
          std::pair{"control.tar.zst", &archive_write_add_filter_zstd}}) {
        const auto bytes = DebianFile::packAr(
            {{"debian-binary", "2.0\n"},
             {name, DebianFile::packTar({{"./control", file.control()}}, filter)},
             {"data.tar.xz", ""}});
        EXPECT_EQ(read(bytes), expected) << name;
    }
}

TEST(DebianPackage, PackageOfTheSystemsOwnToolIsRead) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.path() + "/root/DEBIAN");
    writeFile(folder.path() + "/root/DEBIAN/control",
              "Package: nocta\nVersion: 1:1.3-1\nArchitecture: amd64\nMaintainer: A <a@b.c>\n"
              "Description: x\n");
    const auto file = folder.path() + "/nocta.deb";
    ASSERT_EQ(
        runToEnd({"dpkg-deb", "--root-owner-group", "--build", folder.path() + "/root", file}), 0);
    const auto package = read(contentOf(file));
    ASSERT_TRUE(package);
    EXPECT_EQ(package->version, "1:1.3-1");
}

TEST(DebianPackage, AnythingElseIsNotAPackage) {
    const auto good = DebianFile().bytes();
    DebianFile nameless;
    nameless.name = "";
    DebianFile longVersion;
    longVersion.version = std::string(5000, '1');
    const auto control = DebianFile::packTar({{"./control", DebianFile().control()}});
    for (const auto& bytes :
         {std::string(), std::string("hello"), std::string(1 << 16, '\0'), good.substr(0, 100),
          good.substr(1), nameless.bytes(), longVersion.bytes(),
          DebianFile::packAr({{"data.tar.xz", control}}),
          DebianFile::packAr({{"control.tar.xz", "hello"}}),
          DebianFile::packAr({{"control.tar.xz", control.substr(0, control.size() / 2)}}),
          DebianFile::packAr({{"control.tar.xz", DebianFile::packTar({{"./other", "x"}})}}),
          control}) {
        EXPECT_EQ(read(bytes), std::nullopt) << bytes.substr(0, 60);
    }
}

TEST(DebianPackage, LargeControlDataAreRefused) {
    const auto padded = DebianFile().control() + std::string(1 << 20, '\n');
    EXPECT_EQ(read(DebianFile::packAr(
                  {{"control.tar.xz", DebianFile::packTar({{"./control", padded}})}})),
              std::nullopt);
    const auto large = DebianFile::packTar(
        {{"./control", DebianFile().control()}, {"./padding", std::string(2 << 20, 'x')}},
        archive_write_add_filter_none);
    EXPECT_EQ(read(DebianFile::packAr({{"control.tar", large}})), std::nullopt);
}

} // namespace
} // namespace nocta
