#pragma once

#include <archive.h>
#include <archive_entry.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace nocta {

/// The content of a Debian package, which need not be valid.
struct DebianFile {
    using Members = std::vector<std::pair<std::string, std::string>>; ///< names and contents

    std::string name = "nocta";
    std::string version = "1.3-1";
    std::string architecture = "amd64";

    std::string control() const {
        return "Package: " + name + "\nVersion: " + version + "\nArchitecture: " + architecture +
               "\nDescription: dims displays\n Version: 9\n";
    }

    /// Packs members into an archive. `filter` is a function of libarchive such as
    /// `archive_write_add_filter_xz`.
    static std::string pack(const Members& members, int (*format)(archive*),
                            int (*filter)(archive*)) {
        std::string packed;
        const std::unique_ptr<archive, decltype(&archive_write_free)> writer(archive_write_new(),
                                                                             &archive_write_free);
        format(writer.get());
        filter(writer.get());
        archive_write_set_bytes_in_last_block(writer.get(), 1);
        archive_write_open(
            writer.get(), &packed, nullptr,
            [](archive* /*writer*/, void* to, const void* data, size_t size) {
                static_cast<std::string*>(to)->append(static_cast<const char*>(data), size);
                return static_cast<la_ssize_t>(size);
            },
            nullptr);
        for (const auto& [member, content] : members) {
            const std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry(
                archive_entry_new(), &archive_entry_free);
            archive_entry_set_pathname(entry.get(), member.c_str());
            archive_entry_set_size(entry.get(), static_cast<la_int64_t>(content.size()));
            archive_entry_set_filetype(entry.get(), AE_IFREG);
            archive_entry_set_perm(entry.get(), 0644);
            archive_write_header(writer.get(), entry.get());
            archive_write_data(writer.get(), content.data(), content.size());
        }
        archive_write_close(writer.get());
        return packed;
    }
    static std::string packTar(const Members& members,
                               int (*filter)(archive*) = archive_write_add_filter_xz) {
        return pack(members, archive_write_set_format_gnutar, filter);
    }
    static std::string packAr(const Members& members) {
        return pack(members, archive_write_set_format_ar_svr4, archive_write_add_filter_none);
    }

    /// The bytes of the package. `data` stands for the program's files.
    std::string bytes(const std::string& data = "binary") const {
        return packAr({{"debian-binary", "2.0\n"},
                       {"control.tar.xz", packTar({{"./md5sums", ""}, {"./control", control()}})},
                       {"data.tar.xz", packTar({{"./usr/bin/nocta", data}})}});
    }
};

} // namespace nocta
