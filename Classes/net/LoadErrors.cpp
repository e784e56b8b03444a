#include "net/LoadErrors.h"

#include <curl/curl.h>

namespace velmo::detail {
namespace {

struct Row {
    CURLcode number;
    URLErrorCode code;
};

constexpr Row Rows[] = {
    {CURLE_UNSUPPORTED_PROTOCOL, URLErrorBadServerResponse},  // HTTP 0.9
    {CURLE_URL_MALFORMAT, URLErrorBadURL},
    {CURLE_COULDNT_RESOLVE_PROXY, URLErrorCannotFindHost},
    {CURLE_COULDNT_RESOLVE_HOST, URLErrorCannotFindHost},
    {CURLE_COULDNT_CONNECT, URLErrorCannotConnectToHost},
    {CURLE_PROXY, URLErrorCannotConnectToHost},
    {CURLE_OPERATION_TIMEDOUT, URLErrorTimedOut},
    {CURLE_PARTIAL_FILE, URLErrorNetworkConnectionLost},
    {CURLE_SEND_ERROR, URLErrorNetworkConnectionLost},
    {CURLE_RECV_ERROR, URLErrorNetworkConnectionLost},
    {CURLE_GOT_NOTHING, URLErrorNetworkConnectionLost},
    {CURLE_HTTP2, URLErrorNetworkConnectionLost},
    {CURLE_HTTP2_STREAM, URLErrorNetworkConnectionLost},
    {CURLE_WEIRD_SERVER_REPLY, URLErrorBadServerResponse},
    {CURLE_BAD_CONTENT_ENCODING, URLErrorCannotDecodeRawData},
    {CURLE_SSL_CONNECT_ERROR, URLErrorSecureConnectionFailed},
    {CURLE_SSL_CACERT_BADFILE, URLErrorSecureConnectionFailed},
    {CURLE_PEER_FAILED_VERIFICATION, URLErrorServerCertificateUntrusted},
};

}  // namespace

Error errorOfCurl(int number, const char* text) {
    const auto code = static_cast<CURLcode>(number);
    const char* const told = *text ? text : curl_easy_strerror(code);
    for (const Row& row : Rows)
        if (row.number == code) return urlError(row.code, String::fromUTF8(told));
    return urlError(URLErrorUnknown, String::fromUTF8(told));
}

}  // namespace velmo::detail
