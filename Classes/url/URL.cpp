// A URL is a text and the places of its parts in it, cut once when it is made. Parts are views
// into that text, so that asking for one costs nothing; what was resolved or composed comes with
// its parts from the composer and is not cut again. Where the parts stand is told in PartedText.h.
#include <velmocore/url/URL.h>

#include <algorithm>
#include <filesystem>
#include <ostream>

#include "text/Keyword.h"
#include "text/PathParts.h"
#include "url/Escapes.h"
#include "url/Grammar.h"
#include "url/URLMaker.h"

namespace velmo {

namespace escapes = detail::escapes;
namespace grammar = detail::grammar;

namespace {

using detail::URLMaker;

/// A URL that is not absent, with its parts.
grammar::Reference referenceOf(const URL& url) {
    return {url.absoluteString(), URLMaker::tailOf(url).parts};
}

/// The decoded text; the raw one if its escapes are not UTF-8.
String decodedOrRaw(std::u16string_view raw) {
    const String text(raw);
    const String decoded = escapes::decoded(text, UTF8StringEncoding);
    return decoded.isAbsent() ? text : decoded;
}

/// The path with an escape for every unit that a file URL's path cannot hold as it is; a
/// semicolon would start parameters for other readers. Absent
/// for a lone surrogate.
String escapedFilePath(std::u16string_view path) {
    return escapes::escaped(path, UTF8StringEncoding, [path](std::size_t i) {
        return grammar::isPathUnit(path[i]) && path[i] != u';';
    });
}

bool hasDotSegments(std::u16string_view path) {
    return path.find(u"/.") != path.npos || path.starts_with(u'.');
}

}  // namespace

URL URL::URLWithString(const String& string) {
    return string.isAbsent() ? URL() : URLMaker::cut(string);
}

URL URL::URLWithString(const String& string, const URL& base) {
    if (base.isAbsent()) return URLWithString(string);
    return string.isAbsent() ? URL() : URLMaker::resolved(string, base);
}

URL URL::fileURLWithPath(const String& path) {
    if (path.isEmpty()) return {};
    std::u16string absolute(path);
    if (path[0] != u'/') {
        std::error_code error;
        const std::filesystem::path current = std::filesystem::current_path(error);
        if (error) return {};
        const String folder = String::fromUTF8(current.native());
        absolute = detail::appendedComponent(folder, path);
    }
    const String escaped = escapedFilePath(absolute);
    return escaped.isAbsent() ? URL() : URLWithString(u"file://" + std::u16string(escaped));
}

std::u16string_view URL::part(URLPart part) const& noexcept {
    return isAbsent() ? std::u16string_view() : URLMaker::tailOf(*this).parts[part].of(string_);
}

std::optional<std::uint32_t> URL::port() const noexcept {
    return grammar::portOf(part(URLPart::Port));
}

String URL::path() const { return decodedOrRaw(part(URLPart::Path)); }

String URL::lastPathComponent() const {
    return decodedOrRaw(detail::lastComponentOf(part(URLPart::Path)));
}

String URL::pathExtension() const {
    if (isAbsent()) return {};
    const String name =
        isFileURL() ? lastPathComponent() : String(detail::lastComponentOf(part(URLPart::Path)));
    return detail::extensionOfComponent(name);
}

bool URL::isFileURL() const noexcept {
    return detail::keyword::equals(part(URLPart::Scheme), "FILE");
}

URL URL::standardizedURL() const {
    if (isAbsent() || !hasDotSegments(referenceOf(*this).wholePath())) return *this;
    return URL(grammar::withoutDotSegments(referenceOf(*this)));
}

URL detail::URLMaker::made(std::u16string_view text, const grammar::Tail& tail) {
    StringBuilder out(text.size() + grammar::TailUnits);
    out.append(text);
    return URL(grammar::finishedWith(tail, out));
}

URL detail::URLMaker::cut(std::u16string_view text) {
    if (text.size() >= grammar::Span::Missing) return {};
    // Nearly all are URLs, whose parts are noted where they stay.
    StringBuilder out(text.size() + grammar::TailUnits);
    out.append(text);
    static constexpr grammar::Tail Empty{};
    grammar::Parts& parts = grammar::tailBehind(Empty, out).parts;
    return grammar::cut(text, parts) ? URL(out.finishWithTail(grammar::TailUnits)) : URL();
}

URL detail::URLMaker::resolved(std::u16string_view text, const URL& base) {
    grammar::Parts parts;
    if (!grammar::cut(text, parts)) return {};
    const grammar::Reference reference{text, parts};
    // Most links of a page are URLs of their own with nothing to resolve.
    if (reference.has(URLPart::Scheme) && !hasDotSegments(reference.wholePath()))
        return made(text, {parts});
    return URL(grammar::resolved(reference, referenceOf(base)));
}

std::ostream& operator<<(std::ostream& stream, const URL& url) {
    return stream << url.absoluteString();
}

}  // namespace velmo
