#include "backends/linux/fetch/DebianPackage.h"

#include "backends/linux/fetch/FetchProtocol.h"

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <memory>
#include <string>
#include <string_view>

namespace nocta {

namespace {

constexpr std::size_t maxControlArchiveSize = 1 << 20; // bytes, compressed
constexpr std::size_t maxControlSize = 1 << 16;        // bytes

/// An archive in memory, read from its first entry to its last.
class Archive {
public:
    Archive() : archive_(archive_read_new(), &archive_read_free) {}

    archive* get() const { return archive_.get(); }

    bool open(std::span<const unsigned char> bytes) const {
        return archive_read_open_memory(get(), bytes.data(), bytes.size()) == ARCHIVE_OK;
    }

    /// Moves to the first entry whose name `isWanted`, and returns its content.
    template <class IsWanted>
    std::optional<std::string> find(IsWanted isWanted, std::size_t maxSize) const {
        archive_entry* entry = nullptr;
        while (archive_read_next_header(get(), &entry) == ARCHIVE_OK) {
            const auto* const name = archive_entry_pathname(entry);
            if (name != nullptr && isWanted(std::string_view(name))) {
                return content(maxSize);
            }
        }
        return std::nullopt;
    }

private:
    std::optional<std::string> content(std::size_t maxSize) const {
        std::string bytes(maxSize + 1, '\0');
        const auto size = archive_read_data(get(), bytes.data(), bytes.size());
        if (size < 0 || static_cast<std::size_t>(size) > maxSize) {
            return std::nullopt;
        }
        bytes.resize(static_cast<std::size_t>(size));
        return bytes;
    }

    std::unique_ptr<archive, decltype(&archive_read_free)> archive_;
};

std::optional<std::string> readControlFile(std::span<const unsigned char> package) {
    const Archive outer;
    archive_read_support_format_ar(outer.get());
    if (!outer.open(package)) {
        return std::nullopt;
    }
    const auto control =
        outer.find([](std::string_view name) { return name.starts_with("control.tar"); },
                   maxControlArchiveSize);
    if (!control) {
        return std::nullopt;
    }
    const Archive inner;
    archive_read_support_format_tar(inner.get());
    archive_read_support_filter_gzip(inner.get());
    archive_read_support_filter_xz(inner.get());
    archive_read_support_filter_zstd(inner.get());
    if (!inner.open({reinterpret_cast<const unsigned char*>(control->data()), control->size()})) {
        return std::nullopt;
    }
    return inner.find(
        [](std::string_view name) { return name == "./control" || name == "control"; },
        maxControlSize);
}

/// Returns the value of a field of one line, or an empty string.
std::string field(std::string_view control, std::string_view name) {
    while (!control.empty()) {
        auto line = control.substr(0, control.find('\n'));
        control.remove_prefix(std::min(line.size() + 1, control.size()));
        if (line.starts_with(name) && line.substr(name.size()).starts_with(": ")) {
            line.remove_prefix(name.size() + 2);
            return std::string(line.size() <= maxFeedValueSize ? line : "");
        }
    }
    return {};
}

} // namespace

std::optional<Package> readDebianPackage(std::span<const unsigned char> bytes) {
    const auto control = readControlFile(bytes);
    if (!control) {
        return std::nullopt;
    }
    Package package{.path = {},
                    .name = field(*control, "Package"),
                    .version = field(*control, "Version"),
                    .architecture = field(*control, "Architecture")};
    const auto isComplete =
        !package.name.empty() && !package.version.empty() && !package.architecture.empty();
    return isComplete ? std::optional(std::move(package)) : std::nullopt;
}

} // namespace nocta
