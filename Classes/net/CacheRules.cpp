#include "net/CacheRules.h"

#include <charconv>
#include <chrono>

#include <velmocore/text/Comparison.h>
#include <velmocore/text/Finding.h>

namespace velmo::detail {
namespace {

using Seconds = std::chrono::duration<double>;

/// Fields of a request that make its answer another one than all others get.
constexpr std::u16string_view OwnFields[] = {
    u"Authorization", u"Cookie", u"Range", u"If-Range", u"If-Modified-Since", u"If-None-Match"};

std::optional<Seconds> secondsOf(const String& text) {
    const std::string digits = text.utf8();
    std::uint32_t number = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return result.ec == std::errc() ? std::optional(Seconds(number)) : std::nullopt;
}

bool hasDirective(const URLResponse& response, std::u16string_view directive) {
    return containsSubstring(response.headers.value(u"Cache-Control"), directive,
                             Case::Insensitive);
}

std::optional<Seconds> maxAgeOf(const URLResponse& response) {
    const String control = response.headers.value(u"Cache-Control");
    constexpr std::u16string_view Name = u"max-age=";
    const Range found = findString(control, Name, {0, 0}, {.letterCase = Case::Insensitive});
    return found.isFound() ? secondsOf(control.view().substr(found.end())) : std::nullopt;
}

/// How long an answer is good, from when the server made it.
Seconds lifetimeOf(const URLResponse& response, Date now) {
    if (hasDirective(response, u"no-cache")) return Seconds(0);
    if (const auto age = maxAgeOf(response)) return *age;
    const auto end = expiresDate(response);
    return end ? *end - createdDate(response).value_or(now) : Seconds(0);
}

/// Whether it is the same answer for all requests; all of ours take the same encodings.
bool varies(const URLResponse& response) {
    const String fields = response.headers.value(u"Vary");
    return !fields.isAbsent() && !isEqualToStringNoCase(fields, u"Accept-Encoding");
}

bool hasValidator(const URLResponse& response) {
    return !response.headers.value(u"ETag").isAbsent() || !lastModified(response).isAbsent();
}

}  // namespace

bool canUseCache(const URLRequest& request) {
    if (!request.cache || request.method != u"GET" || request.body || request.shouldHandleCookies)
        return false;
    for (const std::u16string_view name : OwnFields)
        if (!request.headers.value(name).isAbsent()) return false;
    return request.url.user().isAbsent();
}

bool isUsable(const CachedURLResponse& answer, RequestCachePolicy policy, Date now) {
    if (policy == RequestCachePolicy::ReturnCacheDataElseLoad) return true;
    if (policy != RequestCachePolicy::UseProtocolCachePolicy) return false;
    const Seconds before = secondsOf(answer.response.headers.value(u"Age")).value_or(Seconds(0));
    return now >= answer.stored &&
           before + (now - answer.stored) < lifetimeOf(answer.response, answer.stored);
}

bool isKeepable(const URLResponse& response, Date now) {
    if (response.statusCode != 200 || hasDirective(response, u"no-store") || varies(response))
        return false;
    return hasValidator(response) || lifetimeOf(response, now) > Seconds(0);
}

bool addValidators(URLRequest& request, const URLResponse& kept) {
    request.headers.setValue(u"If-None-Match", kept.headers.value(u"ETag"));
    request.headers.setValue(u"If-Modified-Since", lastModified(kept));
    return hasValidator(kept);
}

CachedURLResponse confirmed(CachedURLResponse kept, const URLResponse& notModified, Date now) {
    for (const auto& [name, value] : notModified.headers.all())
        // The body is the one that is kept, so is all that tells of it.
        if (!hasPrefixNoCase(name, u"Content-")) kept.response.headers.setValue(name, value);
    kept.stored = now;
    return kept;
}

}  // namespace velmo::detail
