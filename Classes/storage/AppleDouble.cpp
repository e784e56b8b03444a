#include "storage/AppleDouble.h"

#include "platform/Files.h"
#include "storage/BigEndian.h"
#include "storage/ByteParts.h"

namespace velmo::detail {
namespace {

// Both versions of the format have the same header where it matters.
constexpr std::uint32_t Magic = 0x00051607;
constexpr std::size_t HeaderSize = 26, EntrySize = 12;
constexpr std::uint32_t ResourceForkEntry = 2, FinderInfoEntry = 9;
/// Larger ones are no forks of files that this library reads.
constexpr std::size_t MaxFileSize = 1 << 24;

}  // namespace

AppleDouble appleDouble(Bytes file) {
    AppleDouble found;
    if (file.size() < HeaderSize || bigEndian32(file.data()) != Magic) return found;
    const std::size_t entries = bigEndian16(&file[HeaderSize - 2]);
    // Entries may overlap and repeat: each is only a view, so that no count of them costs memory.
    for (std::size_t i = 0; i < entries; ++i) {
        const auto entry = partOf(file, HeaderSize + i * EntrySize, EntrySize);
        if (!entry) break;
        const std::uint8_t* const fields = entry->data();
        const Bytes part =
            partOf(file, bigEndian32(fields + 4), bigEndian32(fields + 8)).value_or(Bytes());
        const std::uint32_t kind = bigEndian32(fields);
        if (kind == ResourceForkEntry && found.resourceFork.empty()) found.resourceFork = part;
        if (kind == FinderInfoEntry && found.finderInfo.empty()) found.finderInfo = part;
    }
    return found;
}

Data appleDoubleBeside(const Path& path) {
    if (path.isAbsent()) return {};
    std::string beside = path.bytes();
    beside.insert(beside.rfind('/') + 1, "._");
    return readRegularFile(beside, MaxFileSize).value_or(Data());
}

String typeOfFinderInfo(Bytes finderInfo) {
    if (finderInfo.size() < 4 || bigEndian32(finderInfo.data()) == 0) return {};
    // Unit for byte, so that any code comes back from its string.
    std::u16string type = u"'";
    for (const std::uint8_t byte : finderInfo.first(4)) type += byte;
    return type + u"'";
}

std::uint32_t codeOfTypeString(std::u16string_view type) {
    if (type.size() != 6 || type.front() != u'\'' || type.back() != u'\'') return 0;
    std::uint32_t code = 0;
    for (const char16_t unit : type.substr(1, 4)) {
        if (unit > 0xFF) return 0;
        code = code << 8 | unit;
    }
    return code;
}

}  // namespace velmo::detail
