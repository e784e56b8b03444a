// The errors of downloads.
#pragma once

#include <velmocore/platform/Error.h>
#include <velmocore/url/DownloadStatus.h>

namespace velmo::detail {

[[nodiscard]] inline Error urlError(URLErrorCode code, const String& text) {
    return {u"NSURLErrorDomain", code, text};
}

/// What the number of a failure of libcurl means; the text may be empty.
[[nodiscard]] Error errorOfCurl(int number, const char* text);

}  // namespace velmo::detail
