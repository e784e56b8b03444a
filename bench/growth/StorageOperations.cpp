// Bytes: compression, digests, base64, property lists, files; and what is asked of paths of the
// user.
#include <velmocore/platform/PropertyList.h>
#include <velmocore/storage/Base64.h>
#include <velmocore/storage/Compression.h>
#include <velmocore/storage/Digests.h>
#include <velmocore/system/StandardFolders.h>
#include <velmocore/text/StringFiles.h>

#include <unistd.h>

#include <filesystem>

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

constexpr Operation Rows[] = {
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
    {"files",
     [](const Input& in) {
         static const TemporaryFile File;
         use(writeToFile(in.text, File.path, false, UTF8StringEncoding));
         use(stringWithContentsOfFile(File.path, UTF8StringEncoding));
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
