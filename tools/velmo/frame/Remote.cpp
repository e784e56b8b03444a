#include "Remote.h"

#include <fmt/core.h>

#include <cstdlib>

#include <velmocore/net/DownloadRequest.h>
#include <velmocore/url/DownloadStatus.h>
#include <velmocore/url/URLConstruction.h>
#include <velmocore/url/URLSchemes.h>

#include "FileBytes.h"

namespace velmo::tool {

bool isRemote(const std::string& name) {
    const String text = String::fromUTF8(name);
    // Not "www.": that may be a file.
    return isHTTPStringURL(text) && text.view().find(u"://") != std::u16string_view::npos;
}

void requireNetwork() {
    const char* value = std::getenv("VELMO_NO_NETWORK");
    if (value && *value) throw InputError("VELMO_NO_NETWORK is set");
}

std::string statusComplaint(std::int64_t status) {
    return isHTTPStatusCodeOkay(status) ? std::string() : fmt::format("HTTP status {}", status);
}

RemoteFile readRemote(const std::string& name) {
    requireNetwork();
    const URL url = URLWithNormalizedStringURL(String::fromUTF8(name));
    if (!isHTTPURL(url)) throw InputError("not a URL");
    DownloadResult result = downloadSynchronous(url, {.limits = {.body = UsualLimit}});
    if (result.error) throw InputError(result.error->text.utf8());
    if (const auto complaint = statusComplaint(result.statusCode); !complaint.empty())
        throw InputError(complaint);
    return {
        .bytes = std::move(result.data).value_or(Data()),
        .charset = result.encodingName.utf8(),
        .isPage = result.MIMEType == u"text/html" || result.MIMEType == u"application/xhtml+xml"};
}

}  // namespace velmo::tool
