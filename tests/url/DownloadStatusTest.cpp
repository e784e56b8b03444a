#include <velmocore/url/DownloadStatus.h>

#include <map>
#include <set>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(DownloadStatus, OfEveryStatusAndErrorCode) {
    const std::set<std::int64_t> temporary = {307, 408, 429, 500, 502, 503, 504, 507, 509, 510};
    for (std::int64_t status = -1; status < 700; ++status) {
        EXPECT_EQ(isHTTPStatusCodeOkay(status), status < 201 || (status > 206 && status < 300)) << status;
        EXPECT_EQ(isHTTPStatusCodeTemporaryError(status), temporary.contains(status)) << status;
    }
    const std::map<std::int64_t, std::int64_t> statuses = {{-1014, 204}, {-1013, 401}, {-1012, 401}, {-1010, 302},
                                                           {-1007, 302}, {-1001, 408}, {-1102, 403}, {-1100, 404}};
    const std::set<std::int64_t> temporaryErrors = {-1011, -1009, -1005, -1001};
    for (std::int64_t code = -1200; code < 10; ++code) {
        const Error error{u"any", code, {}};
        const auto status = statuses.find(code);
        EXPECT_EQ(HTTPStatusCodeForNSURLError(&error), status == statuses.end() ? 0 : status->second) << code;
        EXPECT_EQ(isTemporaryNSURLError(&error), temporaryErrors.contains(code)) << code;
    }
    EXPECT_EQ(HTTPStatusCodeForNSURLError(nullptr), 0);
    EXPECT_FALSE(isTemporaryNSURLError(nullptr));
}

}  // namespace
}  // namespace velmo
