#pragma once

#include <cstdint>

#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>

namespace velmo {

// What to make of a download that did not end as it should. Any thread may call these.
//
//     isHTTPStatusCodeOkay(304);                                          // false
//     const Error timedOut{u"velmo.url", URLErrorTimedOut, u"timed out"};
//     HTTPStatusCodeForNSURLError(&timedOut);                             // 408
//     isTemporaryNSURLError(nullptr);                                     // false

/// Codes of the errors of downloads.
enum URLErrorCode : std::int64_t {
    // What kept a document from coming, by the names.
    URLErrorUnknown = -1,
    URLErrorCancelled = -999,
    URLErrorBadURL = -1000,
    URLErrorTimedOut = -1001,
    URLErrorUnsupportedURL = -1002,
    URLErrorCannotFindHost = -1003,
    URLErrorCannotConnectToHost = -1004,
    URLErrorNetworkConnectionLost = -1005,
    URLErrorHTTPTooManyRedirects = -1007,
    URLErrorNotConnectedToInternet = -1009,
    URLErrorRedirectToNonExistentLocation = -1010,
    URLErrorBadServerResponse = -1011,
    URLErrorUserCancelledAuthentication = -1012,
    URLErrorUserAuthenticationRequired = -1013,
    URLErrorZeroByteResource = -1014,
    URLErrorCannotDecodeRawData = -1015,
    URLErrorCannotParseResponse = -1017,
    URLErrorFileDoesNotExist = -1100,
    URLErrorNoPermissionsToReadFile = -1102,
    URLErrorDataLengthExceedsMaximum = -1103,
    URLErrorSecureConnectionFailed = -1200,
    URLErrorServerCertificateUntrusted = -1202,
};

/// Whether a status tells that a whole document came: below 201 or from 207 to 299. The
/// other successes, 201 to 206, bring none or only a part.
[[nodiscard]] constexpr bool isHTTPStatusCodeOkay(std::int64_t status) {
    return status < 201 || (status >= 207 && status <= 299);
}

/// Whether another try may do better: 307, 408, 429, 500, 502 to 504, 507, 509, 510.
[[nodiscard]] VELMO_API bool isHTTPStatusCodeTemporaryError(std::int64_t status);

/// The status that says the same as an error of a download; 0 if there is none, and without
/// an error. Only the error's code counts.
[[nodiscard]] VELMO_API std::int64_t HTTPStatusCodeForNSURLError(const Error* error);

/// Whether another try may do better; false without an error.
[[nodiscard]] VELMO_API bool isTemporaryNSURLError(const Error* error);

}  // namespace velmo
