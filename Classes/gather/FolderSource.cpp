#include <velmocore/gather/FolderSource.h>

#include <sys/stat.h>

#include <string>
#include <string_view>

#include <velmocore/url/MIMETypes.h>

#include "gather/SingleSource.h"

namespace velmo {
namespace {

/// As a relative reference: what has a meaning in one is escaped.
std::string escapedPath(std::string_view path) {
    constexpr std::string_view Plain = "-._~!$&'()*+,;=@/", Digits = "0123456789ABCDEF";
    std::string escaped;
    for (const char byte : path) {
        const bool isPlain = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                             (byte >= '0' && byte <= '9') || Plain.find(byte) != Plain.npos;
        if (isPlain) {
            escaped += byte;
        } else {
            const auto value = static_cast<unsigned char>(byte);
            escaped += {'%', Digits[value >> 4], Digits[value & 0xF]};
        }
    }
    return escaped;
}

std::uint64_t sizeOf(const Path& path) {
    struct stat info = {};
    return ::lstat(path.c_str(), &info) == 0 ? static_cast<std::uint64_t>(info.st_size) : 0;
}

/// Whether a text of that name is to be read, and not a part of pages or of programs.
bool isReadable(const Path& path) {
    const std::string& bytes = path.bytes();
    const std::size_t dot = bytes.find_last_of("./");
    if (dot == bytes.npos || bytes[dot] == '/') return true;
    const String type = MIMETypeForExtension(String::fromUTF8(bytes.substr(dot + 1)));
    return isTextMIMEType(type) && !isStylesheetOrScriptMIMEType(type);
}

}  // namespace

URL urlOfFile(const Path& file, const Path& folder, const URL& base) {
    if (base.isAbsent()) return URL::fileURLWithPath(file.string()).standardizedURL();
    std::string_view relative = file.bytes();
    if (relative.starts_with(folder.bytes())) relative.remove_prefix(folder.bytes().size());
    while (relative.starts_with('/')) relative.remove_prefix(1);
    return URL::URLWithString(String::fromUTF8(escapedPath(relative)), base);
}

FolderSource::FolderSource(const Path& folder, const FolderSourceOptions& options)
    : folder_(folder), options_(options), walk_(folder, options.files) {}

std::unique_ptr<PageSource> FolderSource::open() {
    const std::optional<FolderFile> file = walk_.next();
    if (!file) return nullptr;
    done_ += sizeOf(file->path);
    SourceOptions options = {.name = file->path.string(),
                             .url = urlOfFile(file->path, folder_, options_.base),
                             .unclear = options_.texts && isReadable(file->path)
                                            ? ContentKind::Text
                                            : ContentKind::Binary,
                             .leavesOut = true,
                             .mostBytes = options_.mostBytes};
    if (file->error) return detail::failingSource(options.name, *file->error);
    return openSource(file->path, options);
}

SourceProgress FolderSource::progress() const {
    if (!total_) {
        total_ = 0;
        FolderWalk walk(folder_, options_.files);
        while (const auto file = walk.next()) *total_ += sizeOf(file->path);
    }
    return {.done = done_, .total = *total_};
}

}  // namespace velmo
