// A URL is a text and the places of its parts in it, cut once when it is made. Parts are views
// into that text, so that asking for one costs nothing; what was resolved or composed comes with
// its parts from the composer and is not cut again.
#include <velmocore/url/URL.h>

#include <algorithm>
#include <filesystem>
#include <ostream>

#include "text/Keyword.h"
#include "text/PathParts.h"
#include "url/Escapes.h"
#include "url/Grammar.h"
#include "url/WebResolution.h"

namespace velmo {

namespace escapes = detail::escapes;
namespace grammar = detail::grammar;

/// Never changes once it is made, so that copies share it on any thread.
struct URL::Rep {
    String string;
    grammar::Parts parts;
    bool isOfWeb = false;  ///< as the URL standard reads and writes it

    grammar::Reference reference() const { return {string, parts}; }

    /// The URL of a text whose parts are known.
    static URL urlOf(const String& string, const grammar::Parts& parts) {
        return string.isAbsent() ? URL()
                                 : URL(std::make_shared<const Rep>(Rep{string, parts, false}));
    }
    static URL urlOf(const grammar::Composed& composed) {
        return urlOf(composed.text, composed.parts);
    }
};

namespace {

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
    if (string.isAbsent()) return {};
    grammar::Parts parts;
    if (!grammar::cut(string, parts)) return {};
    return Rep::urlOf(string, parts);
}

URL URL::URLWithString(const String& string, const URL& base) {
    if (base.isAbsent()) return URLWithString(string);
    if (string.isAbsent()) return {};
    grammar::Reference reference{string, {}};
    if (!grammar::cut(string, reference.parts)) return {};
    // Most links of a page are URLs of their own with nothing to resolve; they keep their string.
    if (reference.has(URLPart::Scheme) && !hasDotSegments(reference.wholePath()))
        return Rep::urlOf(string, reference.parts);
    return Rep::urlOf(grammar::resolved(reference, base.rep_->reference()));
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

const String& URL::absoluteString() const noexcept {
    static const String absent;
    return rep_ ? rep_->string : absent;
}

std::u16string_view URL::part(URLPart part) const& noexcept {
    return rep_ ? rep_->parts[part].of(rep_->string) : std::u16string_view();
}

std::optional<std::uint32_t> URL::port() const noexcept {
    const std::u16string_view digits = part(URLPart::Port);
    if (digits.empty()) return std::nullopt;
    std::uint32_t port = 0;
    for (char16_t digit : digits) port = port * 10 + static_cast<std::uint32_t>(digit - u'0');
    return port;
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
    if (isAbsent() || !hasDotSegments(rep_->reference().wholePath())) return *this;
    return Rep::urlOf(grammar::withoutDotSegments(rep_->reference()));
}

URL detail::WebURLs::made(const grammar::Composed& composed) {
    if (composed.text.isAbsent()) return {};
    return URL(std::make_shared<const URL::Rep>(URL::Rep{composed.text, composed.parts, true}));
}
bool detail::WebURLs::isMade(const URL& url) noexcept { return url.rep_ && url.rep_->isOfWeb; }

std::ostream& operator<<(std::ostream& stream, const URL& url) {
    return stream << url.absoluteString();
}

}  // namespace velmo
