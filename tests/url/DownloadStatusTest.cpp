#include <velmocore/url/DownloadStatus.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(DownloadStatus, TellsWhatToMakeOfAFailure) {
    for (std::int64_t okay : {-1, 200, 207, 299}) EXPECT_TRUE(isHTTPStatusCodeOkay(okay)) << okay;
    for (std::int64_t bad : {201, 204, 206, 300, 304, 404, 500}) EXPECT_FALSE(isHTTPStatusCodeOkay(bad)) << bad;
    EXPECT_TRUE(isHTTPStatusCodeTemporaryError(429) && isHTTPStatusCodeTemporaryError(503));
    EXPECT_FALSE(isHTTPStatusCodeTemporaryError(404) || isHTTPStatusCodeTemporaryError(501));
    // The status of an error says the same as the error: both are temporary, or neither is.
    for (std::int64_t code = -1200; code < 10; ++code) {
        const Error error{u"any", code, {}};
        const std::int64_t status = HTTPStatusCodeForNSURLError(&error);
        if (status) { EXPECT_EQ(isHTTPStatusCodeTemporaryError(status), isTemporaryNSURLError(&error)) << code; }
    }
    const Error missing{u"any", URLErrorFileDoesNotExist, {}};
    EXPECT_EQ(HTTPStatusCodeForNSURLError(&missing), 404);
    EXPECT_EQ(HTTPStatusCodeForNSURLError(nullptr), 0);
    EXPECT_FALSE(isTemporaryNSURLError(nullptr));
}

}  // namespace
}  // namespace velmo
