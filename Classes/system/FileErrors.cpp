#include "system/FileErrors.h"

#include <fmt/core.h>

#include <system_error>

#include <velmocore/platform/Log.h>

#include "system/PathBytes.h"

namespace velmo::detail {

Error systemError(int number, std::string_view about) {
    const std::string text = fmt::format("{}: {}", about, std::generic_category().message(number));
    return {u"posix", number, String::fromUTF8(text)};
}

bool isUsable(const Path& path) {
    if (!path.unusableText().isAbsent()) {
        std::u16string text(path.unusableText());
        std::ranges::replace(text, u'\0', u'\uFFFD');
        log(fmt::format("getFileSystemRepresentation '{}':\n{}\n{}", utf8(text),
                        fmt::format("posix {}", EILSEQ), std::generic_category().message(EILSEQ)));
    }
    return !path.bytes().empty();
}

}  // namespace velmo::detail
