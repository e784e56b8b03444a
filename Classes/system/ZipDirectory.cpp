// Every length and offset is one that somebody wrote: none is used before it is known to lie in
// what was read. An archive may stand behind other bytes, as programs that extract themselves have
// it; where it begins, follows from where the directory ends.
#include "system/ZipDirectory.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>

#include <velmocore/platform/TimeZone.h>

#include "system/ArchiveErrors.h"

namespace velmo::detail {
namespace {

constexpr std::uint32_t LocalMark = 0x04034b50, EntryMark = 0x02014b50, EndMark = 0x06054b50,
                        LargeEndMark = 0x06064b50, LargePlaceMark = 0x07064b50;
constexpr std::size_t LocalSize = 30, EntrySize = 46, EndSize = 22, LargeEndSize = 56,
                      LargePlaceSize = 20, LongestComment = 0xFFFF;
constexpr std::uint32_t ElsewhereMark = 0xFFFFFFFF;
/// In bytes; a million entries with long names.
constexpr std::uint64_t LongestDirectory = std::uint64_t{1} << 30;

enum Extra : std::uint16_t { LargeSizes = 0x0001, Times = 0x5455, UnicodePath = 0x7075 };
enum System : std::uint8_t { Dos = 0, Unix = 3, Darwin = 19 };

[[noreturn]] void damaged(std::string_view entry, std::string_view reason) {
    throw ArchiveFailure(ArchiveProblem::Damaged, entry, reason);
}

/// Numbers in a piece of an archive, the low byte first.
class Fields {
public:
    explicit Fields(Bytes bytes) : bytes_(bytes) {}

    std::uint64_t number(std::size_t at, std::size_t size) const {
        std::uint64_t value = 0;
        while (size-- > 0) value = value << 8 | bytes_[at + size];
        return value;
    }
    std::uint8_t byte(std::size_t at) const { return bytes_[at]; }
    std::uint16_t half(std::size_t at) const { return static_cast<std::uint16_t>(number(at, 2)); }
    std::uint32_t word(std::size_t at) const { return static_cast<std::uint32_t>(number(at, 4)); }
    std::uint64_t large(std::size_t at) const { return number(at, 8); }
    std::size_t size() const { return bytes_.size(); }
    Bytes bytes() const { return bytes_; }

private:
    Bytes bytes_;
};

/// So many bytes at an offset; none if they are not all there.
Data readAt(const OpenFile& file, std::uint64_t offset, std::uint64_t count) {
    Data data(static_cast<std::size_t>(count));
    for (std::size_t done = 0; done < data.size();) {
        const ssize_t got =
            file.calls().pread(file.number(), data.data() + done, data.size() - done,
                               static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) continue;
        demand(got >= 0, "archive");
        if (got == 0) return {};
        done += static_cast<std::size_t>(got);
    }
    return data;
}

struct End {
    std::uint64_t count, size, start;
    std::uint64_t shift;  ///< what stands before the archive
};

End largeEnd(const OpenFile& file, std::uint64_t at, std::uint64_t fileSize) {
    if (at > fileSize || fileSize - at < LargeEndSize) damaged("", "its end is damaged");
    const Data data = readAt(file, at, LargeEndSize);
    const Fields end(data);
    if (data.empty() || end.word(0) != LargeEndMark) damaged("", "its end is damaged");
    return {end.large(32), end.large(40), end.large(48), 0};
}

/// The last record that can be the end, with the comment behind it.
End findEnd(const OpenFile& file, std::uint64_t fileSize) {
    const std::uint64_t tailSize =
        std::min<std::uint64_t>(fileSize, LongestComment + EndSize + LargePlaceSize);
    const Data data = readAt(file, fileSize - tailSize, tailSize);
    const Fields tail(data);
    for (std::size_t i = data.size() < EndSize ? 0 : data.size() - EndSize + 1; i-- > 0;) {
        if (tail.word(i) != EndMark || tail.half(i + 20) > data.size() - i - EndSize) continue;
        if (i >= LargePlaceSize && tail.word(i - LargePlaceSize) == LargePlaceMark)
            return largeEnd(file, tail.large(i - LargePlaceSize + 8), fileSize);
        End end = {tail.half(i + 10), tail.word(i + 12), tail.word(i + 16), 0};
        const std::uint64_t place = fileSize - tailSize + i;
        if (end.size + end.start > place) damaged("", "its end is damaged");
        end.shift = place - end.size - end.start;
        return end;
    }
    damaged("", "not a zip archive, or cut off");
}

std::optional<Date> dosDate(std::uint16_t time, std::uint16_t day) {
    using namespace std::chrono;
    const year_month_day date(year(1980 + (day >> 9)), month(day >> 5 & 15),
                              std::chrono::day(day & 31));
    if (!date.ok()) return std::nullopt;
    // Of the zone of whoever wrote it, which is not told.
    const auto clock = hours(time >> 11) + minutes(time >> 5 & 63) + seconds((time & 31) * 2);
    return TimeZone::system().instantOf(LocalTime(local_days(date).time_since_epoch() + clock));
}

/// The checksum of names, bit by bit: they are short, and few archives have one.
std::uint32_t checksumOf(std::string_view name) {
    std::uint32_t sum = ~std::uint32_t{0};
    for (const char byte : name) {
        sum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ (sum & 1 ? 0xEDB88320 : 0);
    }
    return ~sum;
}

/// The name in UTF-8, of archives whose header has it in an older charset.
void takeUnicodePath(Fields extra, ZipEntry& entry) {
    if (extra.size() < 5 || extra.byte(0) != 1 || extra.word(1) != checksumOf(entry.headerName))
        return;
    entry.name = charsOf(extra.bytes().subspan(5));
}

void takeLargeSizes(Fields extra, ZipEntry& entry) {
    std::size_t at = 0;
    for (std::uint64_t* value : {&entry.size, &entry.packedSize, &entry.offset}) {
        if (*value != ElsewhereMark) continue;
        if (extra.size() - at < 8) damaged(entry.name, "its sizes are missing");
        *value = extra.large(at);
        at += 8;
    }
}

void takeExtra(std::uint16_t kind, Fields extra, ZipEntry& entry) {
    if (kind == LargeSizes) takeLargeSizes(extra, entry);
    if (kind == UnicodePath) takeUnicodePath(extra, entry);
    if (kind == Times && extra.size() >= 5 && (extra.byte(0) & 1))
        entry.modified = Date(std::chrono::seconds(static_cast<std::int32_t>(extra.word(1))));
}

void takeExtras(Bytes extras, ZipEntry& entry) {
    while (extras.size() >= 4) {
        const Fields head(extras);
        const std::size_t size = head.half(2);
        if (size > extras.size() - 4) return;  // some programs pad with zeros
        takeExtra(head.half(0), Fields(extras.subspan(4, size)), entry);
        extras = extras.subspan(4 + size);
    }
}

/// Programs of a system with other separators leave them in.
void straighten(ZipEntry& entry, std::uint8_t system) {
    if (system == Dos && entry.name.find('/') == std::string::npos)
        std::ranges::replace(entry.name, '\\', '/');
}

ZipEntry entryOf(Fields head, Bytes name, Bytes extras) {
    ZipEntry entry;
    entry.name = entry.headerName = charsOf(name);
    entry.packedSize = head.word(20);
    entry.size = head.word(24);
    entry.offset = head.word(42);
    entry.isEncrypted = head.half(8) & 1;
    entry.modified = dosDate(head.half(12), head.half(14));
    takeExtras(extras, entry);
    const std::uint8_t system = head.byte(5);
    straighten(entry, system);
    const std::uint32_t attributes = head.word(38);
    if ((system == Unix || system == Darwin) && attributes >> 16) entry.mode = attributes >> 16;
    const bool isMarked = (attributes & 0x10) && entry.size == 0 && !entry.mode;
    entry.isFolder = entry.name.ends_with('/') || isMarked || (entry.mode && S_ISDIR(*entry.mode));
    return entry;
}

/// Takes an entry off the directory.
ZipEntry nextEntry(Bytes& rest) {
    const Fields head(rest);
    if (rest.size() < EntrySize || head.word(0) != EntryMark)
        damaged("", "its directory is damaged");
    const std::size_t name = head.half(28), extra = head.half(30), comment = head.half(32);
    if (name + extra + comment > rest.size() - EntrySize) damaged("", "its directory is damaged");
    ZipEntry entry =
        entryOf(head, rest.subspan(EntrySize, name), rest.subspan(EntrySize + name, extra));
    rest = rest.subspan(EntrySize + name + extra + comment);
    return entry;
}

/// Where the packed bytes of an entry end.
std::uint64_t endOfEntry(const OpenFile& file, const ZipEntry& entry, std::uint64_t limit) {
    const std::uint64_t most = LocalSize + entry.headerName.size();
    if (entry.offset > limit || limit - entry.offset < most)
        damaged(entry.name, "stands outside of the archive");
    const Data data = readAt(file, entry.offset, most);
    const Fields head(data);
    if (data.empty() || head.word(0) != LocalMark) damaged(entry.name, "is not where it should be");
    if (head.half(26) != entry.headerName.size() ||
        charsOf(head.bytes().subspan(LocalSize)) != entry.headerName)
        damaged(entry.name, "has two names");
    const std::uint64_t start = entry.offset + most + head.half(28);
    if (start > limit || entry.packedSize > limit - start) damaged(entry.name, "is cut off");
    return start + entry.packedSize;
}

}  // namespace

ZipDirectory readZipDirectory(const OpenFile& file, std::uint64_t mostEntries) {
    const auto info = file.info();
    demand(info.has_value(), "archive");
    if (!S_ISREG(info->st_mode)) damaged("", "not a regular file");
    const auto fileSize = static_cast<std::uint64_t>(info->st_size);
    const End end = findEnd(file, fileSize);
    if (end.count > mostEntries)
        throw ArchiveFailure(ArchiveProblem::TooLarge, "", "too many entries");
    ZipDirectory directory;
    directory.start = end.start + end.shift;
    if (end.size > LongestDirectory || directory.start > fileSize ||
        end.size > fileSize - directory.start)
        damaged("", "its directory is damaged");
    const Data data = readAt(file, directory.start, end.size);
    for (Bytes rest = data; directory.entries.size() < end.count;) {
        const std::uint64_t place = directory.start + (data.size() - rest.size());
        ZipEntry entry = nextEntry(rest);
        entry.offset += end.shift;
        entry.flags = place + 9;
        directory.entries.push_back(std::move(entry));
    }
    return directory;
}

void checkLocalHeaders(const OpenFile& file, ZipDirectory& directory) {
    std::ranges::sort(directory.entries, {}, &ZipEntry::offset);
    std::uint64_t end = 0;
    for (const ZipEntry& entry : directory.entries) {
        if (entry.offset < end) damaged(entry.name, "overlaps another entry");
        end = endOfEntry(file, entry, directory.start);
    }
}

}  // namespace velmo::detail
