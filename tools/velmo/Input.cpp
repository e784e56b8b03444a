#include "Input.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

#include <velmocore/markup/Charsets.h>
#include <velmocore/markup/FileTypes.h>
#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/markup/TagPredicates.h>
#include <velmocore/text/Collapsing.h>
#include <velmocore/text/Trimming.h>

namespace velmo::tool {
namespace {

constexpr const char* StandardInput = "-";

/// A charset name of a page: the IANA name of what it means, or the name itself if it
/// means nothing.
Json nameOf(const String& charset) {
    if (charset.isEmpty()) return nullptr;
    const StringEncoding encoding = charset2NSStringEncoding(charset);
    if (encoding == UnknownStringEncoding) return text(charset);
    return std::string(ianaName(encoding));
}

}  // namespace

std::optional<std::string> readFile(const std::string& file, std::string& reason) {
    const bool isStandardInput = file == StandardInput;
    // A folder can be opened but not read; say so before the reading fails.
    std::error_code error;
    if (!isStandardInput && std::filesystem::is_directory(file, error)) {
        reason = std::generic_category().message(EISDIR);
        return std::nullopt;
    }
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(
        isStandardInput ? stdin : std::fopen(file.c_str(), "rb"),
        [](std::FILE* open) { return open == stdin ? 0 : std::fclose(open); });
    std::string bytes;
    if (stream) {
        char block[65536];
        while (const std::size_t count = std::fread(block, 1, sizeof block, stream.get()))
            bytes.append(block, count);
    }
    if (!stream || std::ferror(stream.get())) {
        reason = std::generic_category().message(errno);
        return std::nullopt;
    }
    return bytes;
}

std::optional<std::string> readFile(Session& session, const std::string& file) {
    std::string reason;
    auto bytes = readFile(file, reason);
    if (!bytes) session.fail(file, reason);
    return bytes;
}

Page decodePage(const std::string& bytes, const PageOptions& options) {
    const String charset = String::fromUTF8(options.httpCharset);
    const MarkupDecoding decoding = decodeMarkup(Bytes(bytes), {.encodingName = charset});
    return {decoding.text, std::string(ianaName(decoding.encoding)), nameOf(decoding.declared)};
}

String readableText(const std::string& file, const std::string& bytes) {
    const bool isPage = file == StandardInput ? isHTML(String::fromUTF8(bytes))
                                              : isMarkupFile(String::fromUTF8(file));
    if (!isPage) return String::fromUTF8(bytes);
    return stringByConvertingHtml2PlainText(decodePage(bytes, {}).units);
}

String singleLine(const String& string) {
    return stringByRemovingMultipleWhiteSpaces(stringByTrimmingSpacesAndFeeds(string, true));
}

void forEachFile(Session& session, const std::vector<std::string>& files,
                 const std::function<void(const std::string&, const std::string&)>& work) {
    for (const std::string& file : files)
        if (const auto bytes = readFile(session, file)) work(file, *bytes);
}

}  // namespace velmo::tool
