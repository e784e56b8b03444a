// A URL is cut from the left to the right, as the standard's own expression does: scheme,
// authority, path, query, fragment. Each unit is looked up once in a table of classes, and a unit
// that may not stand in its part ends the cut, and with it the URL. Where no unit of a text is one
// that only some parts may hold, the marks between the parts tell all.
//
// Resolving writes the parts of reference and base behind each other and notes where each stands,
// so that what was put together need not be cut again.
#include "url/Grammar.h"

#include <algorithm>

#include "platform/Ascii.h"
#include "text/Keyword.h"
#include "text/UnitScan.h"
#include "url/IPv6.h"
#include "url/PartedText.h"
#include "url/SpecialSchemes.h"

namespace velmo::detail::grammar {
namespace {

/// What a unit may be part of as it stands; escapes are looked at apart.
enum UnitClass : std::uint8_t {
    InScheme = 1,
    InName = 2,        // unreserved and sub-delims: registered names, users
    InUserInfo = 4,    // and :
    InPath = 8,        // and @ and /
    InQuery = 16,      // and ?; fragments too
    InAuthority = 32,  // user information, host and port, before they are told apart
    Reserved = 64,     // gen-delims
};

constexpr std::array<std::uint8_t, 128> makeClasses() {
    std::array<std::uint8_t, 128> classes{};
    const auto add = [&classes](std::string_view units, int mask) {
        for (char unit : units) {
            auto& entry = classes[static_cast<unsigned char>(unit)];
            entry = static_cast<std::uint8_t>(entry | mask);
        }
    };
    constexpr std::string_view Alphanumeric =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    constexpr std::string_view Marks = "-._~!$&'()*+,;=";
    constexpr int Everywhere = InName | InUserInfo | InPath | InQuery | InAuthority;
    add(Alphanumeric, InScheme | Everywhere);
    add("+-.", InScheme);
    add(Marks, Everywhere);
    add(":", InUserInfo | InPath | InQuery | InAuthority);
    add("@", InPath | InQuery | InAuthority);
    add("/", InPath | InQuery);
    add("?", InQuery);
    add("[]", InAuthority);
    add(":/?#[]@", Reserved);
    return classes;
}
constexpr auto Classes = makeClasses();

constexpr bool isIn(char16_t unit, int mask) noexcept {
    return unit < 128 && (Classes[unit] & mask) != 0;
}

/// The first position from start on that holds neither a unit of the mask nor a whole
/// escape.
std::uint32_t skip(std::u16string_view text, std::uint32_t start, int mask) noexcept {
    std::uint32_t i = start;
    while (i < text.size()) {
        if (isIn(text[i], mask)) {
            ++i;
        } else if (text[i] == u'%' && text.size() - i > 2 && hexDigitValue(text[i + 1]) >= 0 &&
                   hexDigitValue(text[i + 2]) >= 0) {
            i += 3;
        } else {
            break;
        }
    }
    return i;
}

std::uint32_t find(std::u16string_view text, char16_t unit, std::uint32_t start) noexcept {
    const char16_t* const end = text.data() + text.size();
    return static_cast<std::uint32_t>(scan::find(text.data() + start, end, unit) - text.data());
}

/// What stands between the brackets: an IPv6 address, or "v", digits, "." and a name.
bool isIPLiteral(std::u16string_view text) noexcept {
    if (!text.empty() && (text[0] | 0x20) == u'v') {
        std::size_t dot = 1;
        while (dot < text.size() && hexDigitValue(text[dot]) >= 0) ++dot;
        return dot > 1 && dot + 1 < text.size() && text[dot] == u'.' &&
               std::all_of(text.begin() + static_cast<std::ptrdiff_t>(dot) + 1, text.end(),
                           [](char16_t unit) { return isIn(unit, InUserInfo); });
    }
    return detail::isIPv6Address(text);
}

bool isPort(std::u16string_view digits) noexcept {
    std::uint32_t port = 0;
    for (char16_t unit : digits) {
        if (!ascii::isDigit(unit)) return false;
        // Leading zeros are allowed, so the digits are not counted; the value never exceeds ten
        // times the limit.
        port = port * 10 + static_cast<std::uint32_t>(unit - u'0');
        if (port > 65535) return false;
    }
    return true;
}

/// The last @ would be the host's for some readers and the first for others; a second one is no
/// URL. Cuts user information, host and port. The text ends where the authority ends.
bool cutAuthority(std::u16string_view text, std::uint32_t start, Parts& parts) noexcept {
    const auto end = static_cast<std::uint32_t>(text.size());
    std::uint32_t host = start;
    if (const std::uint32_t at = find(text, u'@', start); at < end) {
        if (skip(text, start, InUserInfo) != at) return false;
        const std::uint32_t colon = std::min(find(text, u':', start), at);
        parts[URLPart::User] = {start, colon - start};
        if (colon < at) parts[URLPart::Password] = {colon + 1, at - colon - 1};
        host = at + 1;
    }
    std::uint32_t hostEnd;
    if (host < end && text[host] == u'[') {
        hostEnd = find(text, u']', host);
        if (hostEnd == end || !isIPLiteral(text.substr(host + 1, hostEnd - host - 1))) return false;
        ++hostEnd;
    } else {
        hostEnd = skip(text, host, InName);
    }
    if (hostEnd > host) parts[URLPart::Host] = {host, hostEnd - host};
    if (hostEnd == end) return true;
    if (text[hostEnd] != u':' || !isPort(text.substr(hostEnd + 1))) return false;
    parts[URLPart::Port] = {hostEnd + 1, end - hostEnd - 1};
    return true;
}

/// Cuts the path from start on, and its parameters. Gives its end.
std::uint32_t cutPath(std::u16string_view text, std::uint32_t start, Parts& parts) noexcept {
    const std::uint32_t end = skip(text, start, InPath);
    notePathParts(text, start, end, parts);
    return end;
}

/// Removes . and .. from a path in its place and gives the length that is left. Going
/// above the root stays at the root.
std::size_t removeDotSegments(char16_t* path, std::size_t length) noexcept {
    const std::u16string_view text(path, length);
    std::size_t read = 0, write = 0;
    while (read < length) {
        const bool slash = path[read] == u'/';
        const std::size_t name = read + slash;
        const std::size_t end = std::min(text.find(u'/', name), length);
        const std::u16string_view segment = text.substr(name, end - name);
        if (segment != u"." && segment != u"..") {
            std::char_traits<char16_t>::move(path + write, path + read, end - read);
            write += end - read;
            read = end;
            continue;
        }
        if (!slash) {  // only in front of a relative path, where nothing can be left
            read = std::min(end + 1, length);
            continue;
        }
        if (segment.size() == 2) {
            // Back to the slash in front of the segment before, which the rest is written over.
            while (write > 0 && path[--write] != u'/') {
            }
        }
        if (end == length) path[write++] = u'/';
        read = end;
    }
    return write;
}

/// Writes a URL from parts of others, and notes where they stand in it; of the path, the dot
/// segments go.
class Composer {
public:
    explicit Composer(std::size_t room) : out_(room + 8 + TailUnits) {}

    void scheme(const Reference& from) { part(u"", from, URLPart::Scheme, u":"); }
    void authority(const Reference& from) {
        specifier_ = out_.length();
        if (!part(u"//", from, URLPart::Authority, u"")) return;
        const std::uint32_t start = parts_[URLPart::Authority].location;
        for (URLPart inner : {URLPart::User, URLPart::Password, URLPart::Host, URLPart::Port}) {
            if (!from.has(inner)) continue;
            const Span& span = from.parts[inner];
            parts_[inner] = {start + span.location - from.parts[URLPart::Authority].location,
                             span.length};
        }
    }
    void query(const Reference& from) { part(u"?", from, URLPart::Query, u""); }
    void fragment(const Reference& from) { part(u"#", from, URLPart::Fragment, u""); }

    /// The path as it is.
    void path(std::u16string_view units) {
        const std::size_t start = out_.length();
        out_.append(units);
        notePath(start);
    }
    /// The path is directory and rest, behind each other.
    void path(std::u16string_view directory, std::u16string_view rest) {
        const std::size_t start = out_.length();
        out_.append(directory);
        out_.append(rest);
        const std::size_t written = out_.length() - start;
        if (written) out_.truncate(start + removeDotSegments(out_.data() + start, written));
        guardPath(start);
        notePath(start);
    }
    String finish() {
        if (out_.length() >= Span::Missing) return {};
        parts_[URLPart::ResourceSpecifier] = spanFrom(specifier_);
        return finishedWith({parts_}, out_);
    }

private:
    Span spanFrom(std::size_t start) const {
        return {static_cast<std::uint32_t>(start),
                static_cast<std::uint32_t>(out_.length() - start)};
    }
    bool part(std::u16string_view before, const Reference& from, URLPart part,
              std::u16string_view behind) {
        if (!from.has(part)) return false;
        out_.append(before);
        const std::size_t start = out_.length();
        out_.append(from[part]);
        parts_[part] = spanFrom(start);
        out_.append(behind);
        return true;
    }
    void notePath(std::size_t start) {
        const auto location = static_cast<std::uint32_t>(start);
        notePathParts(out_.view(), location, static_cast<std::uint32_t>(out_.length()), parts_);
    }
    /// What is left of a path may look like an authority, or its first component like a
    /// scheme. A dot segment in front keeps it a path.
    void guardPath(std::size_t start) {
        if (parts_[URLPart::Authority].isPresent()) return;
        const std::u16string_view written = out_.view().substr(start);
        std::u16string_view guard;
        if (written.starts_with(u"//"))
            guard = u"/.";
        else if (start == 0 && written.substr(0, written.find(u'/')).find(u':') != written.npos)
            guard = u"./";
        else
            return;
        const std::u16string path(written);
        out_.truncate(start);
        out_.append(guard);
        out_.append(path);
    }

    StringBuilder out_;
    Parts parts_;
    std::size_t specifier_ = 0;  ///< where the resource specifier starts
};

/// Copied, as the compiler makes one only by way of memory that it has to wait for.
constexpr Parts NoParts;

/// The length of a scheme in front of a colon; 0 if there is none.
std::uint32_t lengthOfScheme(std::u16string_view text, std::uint32_t colon) noexcept {
    if (colon >= text.size() || !ascii::isLetter(text[0])) return 0;
    const std::u16string_view scheme = text.substr(0, colon);
    const auto isOfScheme = [](char16_t unit) { return isIn(unit, InScheme); };
    const bool isScheme =
        webSchemeNamed(scheme) || std::all_of(scheme.begin(), scheme.end(), isOfScheme);
    return isScheme ? colon : 0;
}

}  // namespace

void notePathParts(std::u16string_view text, std::uint32_t start, std::uint32_t end,
                   Parts& parts) noexcept {
    std::uint32_t pathEnd = end;
    // Names of files may hold a semicolon.
    if (!keyword::equals(parts[URLPart::Scheme].of(text), "FILE")) {
        pathEnd = find(text.substr(0, end), u';', start);
        if (pathEnd < end) parts[URLPart::Parameters] = {pathEnd + 1, end - pathEnd - 1};
    }
    parts[URLPart::Path] = {start, pathEnd - start};
}

bool isPathUnit(char16_t unit) noexcept { return isIn(unit, InPath); }
bool isURLUnit(char16_t unit) noexcept { return isIn(unit, InQuery | Reserved); }

bool hasWholeEscapes(std::u16string_view text, const URLMarks& marks) noexcept {
    const auto size = static_cast<std::uint32_t>(text.size());
    for (std::uint32_t i = marks.percent.first(0, size); i < size;
         i = marks.percent.first(i + 3, size))
        if (size - i < 3 || hexDigitValue(text[i + 1]) < 0 || hexDigitValue(text[i + 2]) < 0)
            return false;
    return true;
}

bool cutByMarks(std::u16string_view text, const URLMarks& marks, Parts& parts) noexcept {
    const auto size = static_cast<std::uint32_t>(text.size());
    parts = NoParts;
    const std::uint32_t hash = marks.hash.first(0, size);
    if (marks.hash.first(hash + 1, size) < size) return false;
    const std::uint32_t query = marks.question.first(0, hash);
    std::uint32_t i = 0;
    const std::uint32_t colon = marks.colon.first(0, size);
    if (const std::uint32_t scheme = lengthOfScheme(text, colon)) {
        parts[URLPart::Scheme] = {0, scheme};
        i = scheme + 1;
    }
    parts[URLPart::ResourceSpecifier] = {i, size - i};
    if (size - i >= 2 && text[i] == u'/' && text[i + 1] == u'/') {
        const std::uint32_t start = i + 2;
        i = marks.slash.first(start, query);
        parts[URLPart::Authority] = {start, i - start};
        const std::uint32_t host = marks.colon.first(start, i);
        if (host > start) parts[URLPart::Host] = {start, host - start};
        if (host < i) {
            if (!isPort(text.substr(host + 1, i - host - 1))) return false;
            parts[URLPart::Port] = {host + 1, i - host - 1};
        }
    } else if (i == 0 && colon < marks.slash.first(0, query)) {
        return false;
    }
    if (marks.semicolon)
        notePathParts(text, i, query, parts);
    else
        parts[URLPart::Path] = {i, query - i};
    if (query < hash) parts[URLPart::Query] = {query + 1, hash - query - 1};
    if (hash < size) parts[URLPart::Fragment] = {hash + 1, size - hash - 1};
    return true;
}

bool cut(std::u16string_view text, Parts& parts) noexcept {
    if (text.size() > UnitBits::MostUnits) return cutOneByOne(text, parts);
    const URLMarks marks = urlMarksOf(text);
    // What only some parts may hold is looked at where it stands.
    if (marks.other || (marks.percent && !hasWholeEscapes(text, marks)))
        return cutOneByOne(text, parts);
    return cutByMarks(text, marks, parts);
}

bool cutOneByOne(std::u16string_view text, Parts& parts) noexcept {
    if (text.size() >= Span::Missing) return false;
    const auto end = static_cast<std::uint32_t>(text.size());
    parts = NoParts;
    std::uint32_t i = 0;
    if (end && ascii::isLetter(text[0])) {
        // No scheme is found without a colon behind it; what was read is then part of the path.
        while (i < end && isIn(text[i], InScheme)) ++i;
        if (i < end && text[i] == u':')
            parts[URLPart::Scheme] = {0, i++};
        else
            i = 0;
    }
    parts[URLPart::ResourceSpecifier] = {i, end - i};
    if (end - i >= 2 && text[i] == u'/' && text[i + 1] == u'/') {
        const std::uint32_t start = i + 2;
        i = skip(text, start, InAuthority);
        if (i < end && text[i] != u'/' && text[i] != u'?' && text[i] != u'#') return false;
        parts[URLPart::Authority] = {start, i - start};
        if (!cutAuthority(text.substr(0, i), start, parts)) return false;
    }
    const bool startsWithPath = i == 0;
    i = cutPath(text, i, parts);
    const std::u16string_view path = text.substr(0, i);
    // What stands in front of a colon in the first component would be a scheme.
    if (startsWithPath && path.find(u':') < path.find(u'/')) return false;
    if (i < end && text[i] == u'?') {
        const std::uint32_t start = i + 1;
        i = skip(text, start, InQuery);
        parts[URLPart::Query] = {start, i - start};
    }
    if (i < end && text[i] == u'#') {
        const std::uint32_t start = i + 1;
        i = skip(text, start, InQuery);
        parts[URLPart::Fragment] = {start, i - start};
    }
    return i == end;
}

String resolved(const Reference& reference, const Reference& base) {
    Composer target(reference.text.size() + base.text.size());
    if (reference.has(URLPart::Scheme)) {
        target.scheme(reference);
        target.authority(reference);
        target.path(u"", reference.wholePath());
        target.query(reference);
    } else {
        target.scheme(base);
        const std::u16string_view path = reference.wholePath();
        if (reference.has(URLPart::Authority)) {
            target.authority(reference);
            target.path(u"", path);
            target.query(reference);
        } else {
            target.authority(base);
            const std::u16string_view basePath = base.wholePath();
            if (path.empty()) {
                target.path(basePath);
                // Only a reference without a path, such as one of an anchor alone, keeps the query
                // of the base.
                target.query(reference.has(URLPart::Query) ? reference : base);
            } else {
                std::u16string_view directory;
                if (path[0] != u'/') {
                    directory = basePath.empty() && base.has(URLPart::Authority)
                                    ? u"/"
                                    : basePath.substr(0, basePath.rfind(u'/') + 1);
                }
                target.path(directory, path);
                target.query(reference);
            }
        }
    }
    target.fragment(reference);
    return target.finish();
}

String withoutDotSegments(const Reference& reference) {
    Composer target(reference.text.size());
    target.scheme(reference);
    target.authority(reference);
    target.path(u"", reference.wholePath());
    target.query(reference);
    target.fragment(reference);
    return target.finish();
}

}  // namespace velmo::detail::grammar
