// Which failures of a download are worth another try, and what status a failure without one stands
// for. Both are lists and not ranges: neighbours among the codes mean quite different things.
#include <velmocore/url/DownloadStatus.h>

namespace velmo {

bool isHTTPStatusCodeTemporaryError(std::int64_t status) {
    switch (status) {
        case 307:
        case 408:
        case 429:
        case 500:
        case 502:
        case 503:
        case 504:
        case 507:
        case 509:
        case 510:
            return true;
        default:
            return false;
    }
}

std::int64_t HTTPStatusCodeForNSURLError(const Error* error) {
    switch (error ? error->code : 0) {
        case URLErrorZeroByteResource:
            return 204;
        case URLErrorUserAuthenticationRequired:
        case URLErrorUserCancelledAuthentication:
            return 401;
        case URLErrorRedirectToNonExistentLocation:
        case URLErrorHTTPTooManyRedirects:
            return 302;
        case URLErrorTimedOut:
            return 408;
        case URLErrorNoPermissionsToReadFile:
            return 403;
        case URLErrorFileDoesNotExist:
            return 404;
        default:
            return 0;
    }
}

bool isTemporaryNSURLError(const Error* error) {
    switch (error ? error->code : 0) {
        case URLErrorBadServerResponse:
        case URLErrorNotConnectedToInternet:
        case URLErrorNetworkConnectionLost:
        case URLErrorTimedOut:
            return true;
        default:
            return false;
    }
}

}  // namespace velmo
