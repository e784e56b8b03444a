// Bytes: compression, digests, base64, property lists, files; and what is asked of paths of the
// user.
#include <velmocore/platform/PropertyList.h>
#include <velmocore/storage/Base64.h>
#include <velmocore/storage/Compression.h>
#include <velmocore/storage/DSStore.h>
#include <velmocore/storage/Digests.h>
#include <velmocore/storage/InternetLocations.h>
#include <velmocore/storage/KeyedDataEditing.h>
#include <velmocore/storage/MetaDataStore.h>
#include <velmocore/storage/StorageBlocks.h>
#include <velmocore/system/ConnectionTable.h>
#include <velmocore/system/HelperService.h>
#include <velmocore/system/StandardFolders.h>
#include <velmocore/text/Checksums.h>
#include <velmocore/text/StringFiles.h>

#include <unistd.h>

#include <filesystem>
#include <thread>

#include "../FolderStore.h"
#include "Growth.h"

namespace velmo::growth {

namespace {

/// A file of this process, which is removed at its end.
struct TemporaryFile {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("velmo-growth-" + std::to_string(getpid()));

    ~TemporaryFile() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
};

/// A helper that gives back what it gets.
class Echo {
public:
    Echo() {
        service_.addOperation(u"echo", [](const PropertyListArray& arguments, Error*) {
            return std::optional(PropertyList{arguments});
        });
        if (service_.publish(name_)) thread_ = std::thread([this] { (void)service_.serve(); });
    }
    ~Echo() {
        service_.stop();
        if (thread_.joinable()) thread_.join();
    }

    void call(const PropertyListArray& arguments) const {
        const auto proxy = rootProxyForConnectionWithRegisteredName(name_);
        use(proxy ? proxy->call(u"echo", arguments) : std::nullopt);
    }

private:
    const String name_ = u"velmo-growth-" + String::fromUTF8(std::to_string(getpid()));
    HelperService service_;
    std::thread thread_;
};

void put(Data& data, std::uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8)
        data.push_back(static_cast<std::uint8_t>(number >> shift));
}

/// A store of that size in which every other header claims all that is behind it, with a checksum
/// that is wrong, and the ones between them are of whole blocks of a byte.
Data overlappingStore(std::size_t size) {
    Data store;
    const std::uint8_t byte = 'x';
    while (store.size() < size) {
        const auto left =
            static_cast<std::uint32_t>(size > store.size() + 16 ? size - store.size() - 16 : 1);
        for (const std::uint32_t number :
             {0x31415926u, left, 0u, 1u, 0x31415926u, 1u, left / 2, CRC32({&byte, 1})})
            put(store, number);
        store.push_back(byte);
    }
    return store;
}

std::size_t salvaged(Bytes store) {
    std::size_t live = 0;
    forEachStorageBlock(
        store,
        [&](const StorageBlock& block) { return live += block.state == BlockState::Live, true; },
        {.salvage = true});
    return live;
}

/// Folder metadata of about that size in which many nodes claim the same large block, which names
/// them all as its children.
std::string overlappingFolder(std::size_t size) {
    bench::FolderStore store;
    const auto count = static_cast<std::uint32_t>(size / 16);
    const std::uint32_t first = store.nextIndex();
    std::string block = bench::bigEndian(first) + bench::bigEndian(0xFFFFFFFF);
    for (std::uint32_t i = 0; i < count; ++i)
        block += bench::bigEndian(first + i) + bench::bigEndian(0);
    store.add(std::move(block));
    for (std::uint32_t i = 1; i < count; ++i) store.addAgain(first);
    return store.file(first);
}

/// The same with as many levels as nodes.
std::string deepFolder(std::size_t size) {
    bench::FolderStore store;
    const std::vector<std::string> record = {bench::comment(u"a", u"b")};
    for (std::size_t i = 0; i < size / 64; ++i) {
        const std::uint32_t node = store.nextIndex();
        store.addNode(record, node, std::vector{node + 1});
    }
    return store.file(2);
}

std::size_t recordsOf(Bytes bytes) {
    const auto store =
        DSStore::storeWithFile(DSStoreFile::fileWithData({bytes.begin(), bytes.end()}));
    std::size_t count = 0;
    if (store) store->forEachEntry([&](const DSStoreEntry&) { return ++count, true; });
    return count;
}

/// An AppleDouble file of about that size: as many entries as it can have in its first half, and in
/// the other a fork of as many types, none of which is looked for.
Data crowdedAppleDouble(std::size_t size) {
    const auto count = static_cast<std::uint32_t>(std::min<std::size_t>(size / 24 + 1, 0xFFFF));
    const std::uint32_t fork = 26 + 12 * count, map = 30 + 8 * count;
    Data file(fork + 16 + map);
    const auto set = [&](std::size_t at, std::uint32_t number) {
        for (int i = 0; i < 4; ++i)
            file[at + i] = static_cast<std::uint8_t>(number >> (24 - 8 * i));
    };
    set(0, 0x00051607);
    set(22, count);
    for (std::uint32_t i = 0; i < count; ++i) set(26 + 12 * i, 9);
    set(fork - 12, 2);
    set(fork - 8, fork);
    set(fork - 4, 16 + map);
    set(fork + 4, 16);
    set(fork + 12, map);
    set(fork + 16 + 22, 28);  // the list of types, in the low half
    set(fork + 16 + 26, count - 1);
    return file;
}

constexpr Operation Rows[] = {
    {"keyed data",
     [](const Input& in) {
         Data data;
         for (std::size_t i = 0; i < in.utf8.size(); i += 40)
             addUnsigned(data, 1, static_cast<std::uint32_t>(i));
         addString(data, in.text, 1);
         setData(data, in.utf8, 2);
         use(stringsForKey(data, 1));
         use(numberOfStrings(in.utf8));
         use(isEqualToKeyedData(data, data, KeyedTag::Text));
         removeStringsForKey(data, 1);
         use(isValidKeyedData(data));
     }},
    // Checksums of up to 4 KB are just summed.
    {"stores",
     [](const Input& in) {
         use(salvaged(in.utf8));
         use(salvaged(overlappingStore(in.utf8.size())));
     },
     65536},
    {"folder metadata",
     [](const Input& in) {
         use(recordsOf(in.utf8));
         use(recordsOf(overlappingFolder(in.utf8.size())));
         use(recordsOf(deepFolder(in.utf8.size())));
     },
     65536},
    // Until a window of 32 KB is full, a byte has fewer places to be compared with than later ones.
    {"compression", [](const Input& in) { use(dataByGzippingData(in.utf8)); }, 262144},
    {"decompression",
     [](const Input& in) {
         use(dataByInflatingData(in.compressed));
         use(dataByInflatingData(in.utf8, 1 << 24));
     }},
    {"digests",
     [](const Input& in) {
         use(MD5Digest(in.utf8));
         use(SHA1DigestStringValue(in.utf8));
         use(hexStringValue(in.utf8));
         use(saltedHash(in.text));
     }},
    {"base64",
     [](const Input& in) {
         use(encodedBase64Data(in.utf8));
         use(decodedBase64Data(in.base64));
         use(decodedBase64Data(in.text));
         use(isBase64String(in.text));
     }},
    {"property lists", [](const Input& in) { use(propertyListAsXML(in.utf8)); }},
    {"location files",
     [](const Input& in) {
         use(resolveInternetLocationData({in.utf8, u"webloc", in.utf8}));
         use(resolveInternetLocationData({in.utf8, u"url"}));
         use(resolveInternetLocationData({{}, u"webloc", crowdedAppleDouble(in.utf8.size())}));
         use(pathExtensionForInternetLocation(in.text));
     }},
    {"attributes",
     [](const Input& in) {
         const PropertyListArray tags(in.utf8.size() / 16, {in.text.view().substr(0, 16)});
         use(validatedTags({tags}));
         use(getWhereFrom({{WhereFromsKey, {in.utf8}}}));
         use(getItemTitleForFile({{ItemTitleKey, {in.text}}}, in.text));
     }},
    {"files",
     [](const Input& in) {
         static const TemporaryFile File;
         use(writeToFile(in.text, File.path, false, UTF8StringEncoding));
         use(stringWithContentsOfFile(File.path, UTF8StringEncoding));
     }},
    {"calls to helpers",
     [](const Input& in) {
         static const Echo Helper;
         const PropertyListArray numbers(in.utf8.size() / 16, {std::int64_t(1)});
         const PropertyListArray lists(in.utf8.size() / 64, {PropertyListArray{{true}}});
         Helper.call({{in.text}, {in.utf8}, {numbers}, {lists}});
         use(rootProxyForConnectionWithRegisteredName(in.text));
     }},
    {"folders of the user",
     [](const Input& in) {
         use(pathInHomeDirectory(in.text));
         use(isCloudFolder(in.text));
         use(isVolatileFolder(in.text));
         use(isTemporaryPath(in.text));
     }},
};

}  // namespace

std::span<const Operation> storageOperations() { return Rows; }

}  // namespace velmo::growth
