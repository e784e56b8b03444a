#include <velmocore/storage/DSStore.h>

#include <fmt/core.h>

#include <cstdio>
#include <filesystem>

#include "storage/BigEndianText.h"
#include "storage/DSStoreWalk.h"

namespace velmo {
namespace {

using detail::DSStoreWalk;

void print(std::string_view line) {
    std::printf("%.*s\n", static_cast<int>(line.size()), line.data());
}

}  // namespace

std::optional<DSStore> DSStore::storeWithDirectory(const Path& directory) {
    std::error_code error;
    if (directory.bytes().empty() ||
        !std::filesystem::is_directory(directory.filesystemPath(), error))
        return std::nullopt;
    return storeWithFile(DSStoreFile::fileAtPath(directory.filesystemPath() / ".DS_Store"),
                         directory);
}

std::optional<DSStore> DSStore::storeWithFile(DSStoreFile file, const Path& directory) {
    DSStore store;
    if (!store.initWithFile(std::move(file))) return std::nullopt;
    store._directory = directory;
    store.readTreeHeader();
    return store;
}

void DSStore::readTreeHeader() {
    auto block = blockForEntryNamed("DSDB");
    if (!block) return;
    for (std::uint32_t* field : {&_rootnode, &_levels, &_records, &_nodes, &_page_size})
        *field = block->readUInt32();
}

DSStoreEntry::Reading DSStore::_findEntryForFilename(std::u16string_view filename,
                                                     std::uint32_t codec,
                                                     std::uint32_t node) const {
    DSStoreEntry::Reading found;
    const Data name = detail::bigEndianBytesOf(filename);
    // Reading for these would not move on, however many records a node says that it has.
    if (name.empty() || codec == 0) return found;
    const auto read = [&](DSStoreStream& stream) {
        found = DSStoreEntry::valueForFilenameWithBytes(name, codec, stream);
        return found.isWanted ? DSStoreWalk::Next::Nothing : DSStoreWalk::Next::Record;
    };
    DSStoreWalk(*this, DSStoreWalk::Order::RecordFirst, print).run(node, read);
    return found;
}

DSStoreValue DSStore::valueForFilename(std::u16string_view filename, std::uint32_t codec) const {
    return _findEntryForFilename(filename, codec, _rootnode).value;
}

std::optional<DSStoreEntry> DSStore::entryForFilename(std::u16string_view filename,
                                                      std::uint32_t codec) const {
    auto found = _findEntryForFilename(filename, codec, _rootnode);
    if (!found.isWanted) return std::nullopt;
    return DSStoreEntry(filename, codec, found.type, std::move(found.value));
}

String DSStore::finderCommentForFilename(std::u16string_view filename) const {
    const DSStoreValue value = valueForFilename(filename, FinderCommentCodec);
    const auto* comment = std::get_if<String>(&value);
    return comment ? *comment : String();
}

std::size_t DSStore::forEachEntry(FunctionRef<bool(const DSStoreEntry& entry)> handler) const {
    std::size_t cut = 0;
    const auto read = [&](DSStoreStream& stream) {
        const auto entry = DSStoreEntry::nextEntry(stream);
        const bool isWhole = entry && isKnownDSStoreType(entry->type());
        if (!isWhole) ++cut;
        if (entry && !handler(*entry)) return DSStoreWalk::Next::Nothing;
        return isWhole ? DSStoreWalk::Next::Record : DSStoreWalk::Next::Node;
    };
    return DSStoreWalk(*this, DSStoreWalk::Order::ChildFirst).run(_rootnode, read) + cut;
}

String DSStore::description() const {
    return String::fromUTF8(fmt::format("DSStore: {} blocks, Root: {}, Entries:\n{}",
                                        numberOfBlocks(), printed(_root.description()),
                                        descriptionOfEntries()));
}

}  // namespace velmo
