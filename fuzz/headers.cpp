// Bytes as the head of a response: read, asked for its fields, its redirect and its place in a
// cache, and written and read again.
#include <velmocore/net/HTTPHeaders.h>
#include <velmocore/net/URLResponse.h>
#include <velmocore/platform/Log.h>

#include "Input.h"
#include "net/CacheRules.h"
#include "net/Redirects.h"

using namespace velmo;

namespace {

using fuzz::require;

std::string written(const HTTPResponseHead& head) {
    std::string bytes =
        "HTTP/1.1 " + std::string(head.statusCode < 100 ? head.statusCode < 10 ? 2 : 1 : 0, '0');
    bytes += std::to_string(head.statusCode) + " " + head.reason.utf8() + "\r\n";
    for (const auto& [name, value] : head.headers.all())
        bytes += name.utf8() + ": " + value.utf8() + "\r\n";
    return bytes + "\r\n";
}

void checkSame(const HTTPResponseHead& head, const HTTPResponseHead& again) {
    require(head.statusCode == again.statusCode && head.reason == again.reason);
    require(head.headers.all().size() == again.headers.all().size());
    for (std::size_t i = 0; i < head.headers.all().size(); ++i) {
        const auto &one = head.headers.all()[i], &other = again.headers.all()[i];
        require(one.name == other.name && one.value == other.value);
        require(!head.headers.value(one.name).isAbsent());
    }
}

/// What a server says can only lead to a request that can be sent, or to none.
void checkUse(const URLResponse& response) {
    URLRequest former = {.url = response.url, .method = u"POST", .body = Data{1}};
    former.headers.setValue(u"Authorization", u"secret");
    if (detail::isRedirect(response)) {
        const URLRequest next = detail::redirectedRequest(former, response);
        const bool isSame = !next.isAbsent() && next.url.host() == former.url.host();
        require(isSame || next.headers.value(u"Authorization").isAbsent());
    }
    require(response.expectedContentLength >= -1);
    const Date now = Date(std::chrono::seconds(1'000'000'000));
    static_cast<void>(detail::isKeepable(response, now));
    const auto kept = detail::confirmed({response, {}, now}, response, now);
    static_cast<void>(detail::isUsable(kept, {}, now + std::chrono::seconds(60)));
    static_cast<void>(createdDate(response)), static_cast<void>(lastModifiedDate(response));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool isQuiet = (setLogHandler([](std::string_view) {}), true);
    require(isQuiet);
    const auto head = responseHeadOfBytes({data, size});
    if (!head) return 0;
    require(head->statusCode >= 0 && head->statusCode < 1000);
    const auto again = responseHeadOfBytes(written(*head));
    require(again.has_value());
    checkSame(*head, *again);
    checkUse(responseOfHead(URL::URLWithString(u"https://h.org/a?b#c"), *head));
    return 0;
}
