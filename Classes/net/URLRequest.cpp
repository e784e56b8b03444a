#include <velmocore/net/URLRequest.h>
#include <velmocore/platform/Log.h>
#include <velmocore/text/Comparison.h>
#include <velmocore/text/Finding.h>
#include <velmocore/url/PercentEscapes.h>
#include <velmocore/url/URLConstruction.h>
#include <velmocore/url/URLSchemes.h>
#include <velmocore/url/URLVariants.h>

#include <fmt/core.h>

namespace velmo {
namespace {

constexpr std::u16string_view LocalNames = u".local";
/// Room that a body starts with, in units.
constexpr std::size_t UsualPost = 256;

/// Whether a referrer would tell the name of a machine in the local network.
bool namesLocalHost(const String& referrer) {
    const URL url = URLWithStringOrPath(referrer);
    return url.isAbsent() || !isRemoteWebKitURL(url) ||
           hasSuffixNoCase(url.part(URLPart::Host), LocalNames);
}

std::optional<Data> asciiBytes(const String& text) {
    return dataUsingEncoding(text, ASCIIStringEncoding);
}

/// Fields joined, each name and value made ready by a function that may refuse it.
template <class Escape>
String joinedFields(const HTTPPostFields& fields, Escape escape) {
    StringBuilder post(UsualPost);
    for (const auto& [name, value] : fields) {
        const String escapedName = escape(name);
        if (escapedName.isAbsent()) continue;
        const String escapedValue = escape(value);
        if (escapedValue.isAbsent()) {
            log(fmt::format("Couldn't escape POST value: {}", value.utf8()));
            continue;
        }
        if (!post.isEmpty()) post.append(u'&');
        post.append(escapedName.view());
        post.append(u'=');
        post.append(escapedValue.view());
    }
    return post.finish();
}

std::optional<Data> bodyOfFields(const HTTPPostFields& fields, TextEncoding encoding) {
    if (encoding == UnknownTextEncoding) encoding = UTF8TextEncoding;
    const PercentEscapeOptions options = {.encoding = stringEncodingOf(encoding)};
    return asciiBytes(joinedFields(fields, [&](const String& text) {
        return stringByAddingPercentEscapesToURL(text, options);
    }));
}

}  // namespace

URLRequest requestWithURL(const URL& url, const RequestOptions& options) {
    URLRequest request = {.url = WebKitURL(url), .cachePolicy = options.cachePolicy};
    if (!options.referrer.string().isAbsent()) setReferrer(request, options.referrer);
    if (!options.userAgent.isAbsent()) setUserAgent(request, options.userAgent);
    return request;
}

String userAgent(const URLRequest& request) { return request.headers.value(u"User-Agent"); }

void setUserAgent(URLRequest& request, const String& userAgent) {
    request.headers.setValue(u"User-Agent", userAgent);
}

String referrer(const URLRequest& request) { return request.headers.value(u"Referer"); }

void setReferrer(URLRequest& request, const Referrer& referrer) {
    const String& text = referrer.string();
    if (!isRemoteWebKitStringURL(text)) return;
    // Most have no such name in them and need not be parsed.
    if (containsSubstring(text, LocalNames, Case::Insensitive) && namesLocalHost(text)) return;
    request.headers.setValue(u"Referer", text);
}

bool isValidHTTPPost(const HTTPPost& post) noexcept {
    if (const auto* text = std::get_if<String>(&post)) return !text->isEmpty();
    const auto* fields = std::get_if<HTTPPostFields>(&post);
    return fields && !fields->empty();
}

void setHTTPPost(URLRequest& request, const HTTPPost& post, TextEncoding encoding) {
    if (const auto* fields = std::get_if<HTTPPostFields>(&post))
        request.body = bodyOfFields(*fields, encoding);
    else if (const auto* text = std::get_if<String>(&post))
        request.body = asciiBytes(*text);
    else if (const auto* data = std::get_if<Data>(&post))
        request.body = *data;
    else
        request.body.reset();
}

String formEncodedFields(const HTTPPostFields& fields) {
    return joinedFields(fields, [](const String& text) {
        return stringByAddingPercentEscapesToURL(text, {.toBeEscaped = u"%#&=+;"});
    });
}

}  // namespace velmo
