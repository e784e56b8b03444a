// A key is written once, from left to right, into one buffer: scheme, host and port, then the path,
// which is put right in its place, and the query part by part. Nothing that is written gets longer
// than it was, but for the slash behind a file's scheme and a host that is written in another form.
//
// A key must be its own key, so that whatever is left out is looked for in what stands there then:
// escapes are decoded before dots, sessions and index pages are looked for, and those are taken off
// the end as long as there are any.
//
// Most URLs have no escapes, a host in ASCII and nothing to put right in the path: their marks
// (see URLMarks.h) tell that at once, and then there is nothing to do but to copy.
#include <velmocore/url/PageKey.h>

#include <algorithm>
#include <bit>
#include <optional>

#include "platform/Ascii.h"
#include "text/Keyword.h"
#include "text/SmallBuffer.h"
#include "text/UnitScan.h"
#include "url/Escapes.h"
#include "url/KeyParameters.h"
#include "url/KeyUnits.h"
#include "url/KnownParameters.h"
#include "url/Reductions.h"
#include "url/SessionNames.h"
#include "url/SpecialSchemes.h"
#include "url/URLMaker.h"
#include "url/WebHosts.h"

namespace velmo {
namespace {

using namespace detail;
using Units = std::u16string_view;

constexpr Units HTTP = u"http";

Units withoutLastDots(Units host) {
    while (host.ends_with(u'.')) host.remove_suffix(1);
    return host;
}

/// Nearly all components are none by their first unit.
bool canBeginIndex(char16_t unit) {
    // The dotless I is an I in capitals.
    return ascii::toLower(unit) == u'i' || ascii::toLower(unit) == u'd' || unit > 127;
}

/// "index" or "default" with one of the extensions that servers take for a folder's page.
bool isIndexPage(Units component) {
    static constexpr std::string_view Extensions[] = {
        "HTML", "PHP",  "HTM",  "ASPX", "ASP", "JSP",  "CFM",   "SHTML", "XHTML", "PHTML",
        "PHP3", "PHP4", "PHP5", "CGI",  "PL",  "JSPX", "JHTML", "MSPX",  "DO",    "PY",
    };
    static constexpr std::string_view Stems[] = {"INDEX.", "DEFAULT."};
    if (component.empty() || !canBeginIndex(component[0])) return false;
    for (const std::string_view stem : Stems) {
        if (!keyword::beginsWith(component, stem)) continue;
        const Units extension = component.substr(stem.size());
        for (const std::string_view known : Extensions)
            if (keyword::equals(extension, known)) return true;
    }
    return false;
}

/// A host in any case without all the "www." in front of it, each of which counts only in front
/// of a name and an ending.
Units withoutWWW(Units host) {
    while (keyword::beginsWith(host, "WWW.") && host.find(u'.', 4) != Units::npos)
        host.remove_prefix(4);
    return host;
}

/// A URL by the grammar, and what its marks tell of it.
struct MarkedURL {
    explicit MarkedURL(const String& url)
        : string(url),
          text(url),
          marks(isShort() ? urlMarksOf(url) : URLMarks()),
          isPlain(isShort() && !marks.other && !marks.percent) {}

    bool isShort() const { return text.size() <= UnitBits::MostUnits; }
    Units operator[](URLPart part) const { return (*parts)[part].of(text); }
    Units between(std::uint32_t start, std::uint32_t end) const {
        return text.substr(start, end - start);
    }

    const String& string;
    Units text;
    const grammar::Parts* parts = nullptr;  ///< to be set before they are asked for
    URLMarks marks;                         ///< none of a long text
    bool isPlain;  ///< whether it is short, has no escapes, and only what stands for itself
};

/// The host as a key has it, but for "www.".
struct KeyHost {
    bool isDomain = false;
    String converted;  ///< absent if it is the host in lower case

    KeyHost(const MarkedURL& url, bool isSpecial) {
        const Units host = url[URLPart::Host];
        if (!isSpecial) return;
        isDomain = url.isPlain && isPlainDomain(host);
        if (isDomain) return;
        converted = convertedDomain(withoutLastDots(host));
        isDomain = !converted.isAbsent();
    }

private:
    /// The ASCII form; absent if there is none, or one that a URL holds in escapes only.
    static String convertedDomain(Units host) {
        StringBuilder out;
        if (!appendDomainHost(out, host)) return {};
        if (out.back() == u'.') {
            // Letters of people may become dots at its end; what is left may be an address.
            const std::u16string rest(withoutLastDots(out.view()));
            out.truncate(0);
            if (!appendDomainHost(out, rest)) return {};
        }
        const Units written = out.view();
        const bool isOfURLs = std::all_of(written.begin(), written.end(), grammar::isURLUnit);
        return isOfURLs ? out.finish() : String();
    }
};

class KeyWriter {
public:
    KeyWriter(const MarkedURL& url, const PageKeyOptions& options)
        : url_(url),
          options_(options),
          special_(specialSchemeNamed(url[URLPart::Scheme])),
          host_(url, special_),
          out_(url.text.size() + host_.converted.length() + 4 + escapes::CopySlack) {}

    /// The URL itself if it is its key.
    String key() {
        write();
        const String& url = url_.string;
        return isSame(out_.view(), url) ? url : String(out_.view());
    }

private:
    void write() {
        const Units scheme = url_[URLPart::Scheme];
        const bool isFile = special_ && special_->port == 0;
        if (scheme.data()) writeScheme(scheme);
        if (!url_[URLPart::Authority].data() && !isFile) {
            out_.append(withoutAnchor(url_.text).substr(scheme.data() ? scheme.size() + 1 : 0));
            return;
        }
        out_.append(u'/');
        out_.append(u'/');
        writeHost();
        writePath(options_.indexPages && !isFile);
        writeQuery();
        writeAddress();
    }

    void writeScheme(Units scheme) {
        // With the port of the other one it is a place of its own.
        const bool isFolded = options_.foldScheme && special_ == SpecialHTTPS && port() != 80;
        if (isFolded || special_ == SpecialHTTP)
            out_.append(HTTP);
        else
            out_.appendLower(scheme);
        out_.append(u':');
    }

    std::optional<std::uint32_t> port() const { return grammar::portOf(url_[URLPart::Port]); }

    void writeHost() {
        hostStart_ = out_.length();
        Units host = host_.converted.isAbsent() ? withoutLastDots(url_[URLPart::Host])
                                                : host_.converted.view();
        if (host_.isDomain && options_.foldWWW) host = withoutWWW(host);
        out_.appendLower(host);
        hostEnd_ = out_.length();
        const auto port = this->port();
        if (port && !(special_ && *port == special_->port)) {
            out_.append(u':');
            for (const char digit : std::to_string(*port))
                out_.append(static_cast<char16_t>(digit));
        }
    }

    void writePath(bool withoutIndex) {
        const std::size_t start = out_.length();
        const grammar::Span path = url_.parts->wholePath();
        if (isSettled(path)) {
            writeSettled(path, withoutIndex);
        } else {
            writeComponents(path.of(url_.text), start);
            while (withoutIndex && out_.length() > start && isIndexPage(lastComponent(start)))
                dropLastComponent(start);
        }
        if (out_.length() == start) out_.append(u'/');
    }

    /// Whether there is nothing to put right in a path but a slash at its end.
    bool isSettled(grammar::Span path) const {
        if (!url_.isPlain) return false;
        const URLMarks& marks = url_.marks;
        const UnitBits units = UnitBits::below(path.end()).without(UnitBits::below(path.location));
        const UnitBits slash = marks.slash & units, uneven = slash | (marks.dot & units);
        if (slash.before(uneven) || ((marks.equals | marks.semicolon) & units)) return false;
        const Units text = path.of(url_.text);
        return (text.empty() || text[0] == u'/') &&
               !scan::contains(text.data(), text.data() + text.size(), u'(');
    }

    void writeSettled(grammar::Span path, bool withoutIndex) {
        std::uint32_t end = path.end();
        const auto slash = [&] { return url_.marks.slash.last(end); };
        if (end > path.location && slash() == end - 1) --end;
        while (withoutIndex && end > path.location && isIndexPage(url_.between(slash() + 1, end)))
            end = slash();
        out_.append(url_.between(path.location, end));
    }

    void writeComponents(Units path, std::size_t start) {
        out_.appendDecoded(path, PlainInPath);
        const std::size_t end = out_.length();
        // What is written here never gets before what is read.
        out_.truncate(start);
        for (std::size_t from = start; from < end;) {
            char16_t* const component = out_.data() + from;
            const Units rest(component, end - from);
            const std::size_t length = std::min(rest.find(u'/'), rest.size());
            from += length + 1;
            writeComponent(component, length, start);
        }
    }

    void writeComponent(char16_t* units, std::size_t length, std::size_t start) {
        if (options_.sessionIDs) length = withoutSessions(units, length);
        const Units component(units, length);
        if (component.empty() || component == u".") return;
        if (component == u"..") return dropLastComponent(start);
        if (options_.sessionIDs && isSessionComponent(component)) return;
        // Some write parameters as folders.
        const std::size_t equals = component.find(u'=');
        if (equals != Units::npos && isTracking(component.substr(0, equals))) return;
        out_.appendComponent(units, length);
    }

    /// Takes the sessions out of a component's parameters, and gives the length that is left.
    std::size_t withoutSessions(char16_t* units, std::size_t length) const {
        const Units component(units, length);
        std::size_t start = component.find(u';');
        if (start == Units::npos) return length;
        const bool hasToken = keyword::contains(component, "CFTOKEN=");
        std::size_t write = start;
        while (start < length) {
            const std::size_t end = std::min(component.find(u';', start + 1), length);
            const Units parameter = component.substr(start + 1, end - start - 1);
            const std::size_t equals = indexOf(parameter, u'=');
            const Units name = parameter.substr(0, equals);
            const bool isClient = hasToken && keyword::equals(name, "CFID");
            const Units value = parameter.substr(std::min(equals + 1, parameter.size()));
            if (!isClient && !known().isSession(name, value)) {
                std::char_traits<char16_t>::move(units + write, units + start, end - start);
                write += end - start;
            }
            start = end;
        }
        return write;
    }

    Units lastComponent(std::size_t start) const {
        const Units path = out_.from(start);
        return path.substr(path.rfind(u'/') + 1);
    }
    void dropLastComponent(std::size_t start) {
        const std::size_t slash = out_.from(start).rfind(u'/');
        if (slash != Units::npos) out_.truncate(start + slash);
    }

    void writeQuery() {
        const Units query = url_[URLPart::Query];
        if (query.empty()) return;
        KeyParameters parameters(options_, known(), host(), query.size());
        if (url_.isPlain) {
            addPlain(parameters, (*url_.parts)[URLPart::Query]);
            return parameters.write(out_, query);
        }
        SmallBuffer<char16_t> decoded(query.size() + escapes::CopySlack);
        add(parameters, {decoded.data(), writeDecoded(decoded.data(), query, PlainInQuery)});
        parameters.write(out_, query);
    }

    void addPlain(KeyParameters& parameters, grammar::Span query) const {
        const Units text = query.of(url_.text);
        const auto marked = [&](const UnitBits& marks) {
            return marks.word(query.location, query.length);
        };
        const URLMarks& marks = url_.marks;
        if (text.size() > 64 || marked(marks.semicolon)) return add(parameters, text);
        addByMarks(parameters, text, marked(marks.ampersand), marked(marks.equals));
    }

    /// The same by the marks, of a query of up to 64 units without semicolons.
    static void addByMarks(KeyParameters& parameters, Units query, std::uint64_t ampersands,
                           std::uint64_t equals) {
        const auto size = static_cast<unsigned>(query.size());
        for (unsigned start = 0;; ampersands &= ampersands - 1) {
            const unsigned end = std::min(placeOf(ampersands), size);
            const unsigned nameEnd = std::min(placeOf(equals), end);
            parameters.add({query.data() + start, end - start}, nameEnd - start);
            if (end == size) return;
            equals &= ~std::uint64_t{0} << end;
            start = end + 1;
        }
    }
    static unsigned placeOf(std::uint64_t bits) {
        return static_cast<unsigned>(std::countr_zero(bits));
    }

    static void add(KeyParameters& parameters, Units query) {
        while (!query.empty()) {
            const std::size_t end = endOfParameter(query);
            const Units parameter = query.substr(0, end);
            parameters.add(parameter, indexOf(parameter, u'='));
            query.remove_prefix(std::min(end + 1, query.size()));
        }
    }

    /// At the next &, or at a ; if another name and = follow it.
    static std::size_t endOfParameter(Units query) {
        for (std::size_t i = 0; i < query.size(); ++i) {
            if (query[i] == u'&') return i;
            if (query[i] != u';') continue;
            const std::size_t next = query.find_first_of(u"=&;", i + 1);
            if (next == Units::npos) return query.size();
            if (query[next] == u'=' && next > i + 1) return i;
            i = next - 1;
        }
        return query.size();
    }

    const KnownParameters& known() const {
        return KnownParameters::of(options_.parameters ? *options_.parameters
                                                       : TrackingParameters::common());
    }
    bool isTracking(Units name) const {
        return options_.tracking && known().isTracking(name, host());
    }

    /// What stands behind a # if it is part of the address.
    void writeAddress() {
        const Units fragment = url_[URLPart::Fragment];
        if (fragment.size() < 2 || (fragment[0] != u'!' && fragment[0] != u'/')) return;
        out_.append(u'#');
        out_.appendDecoded(fragment, PlainInPath);
    }

    Units host() const { return out_.view().substr(hostStart_, hostEnd_ - hostStart_); }

    const MarkedURL& url_;
    const PageKeyOptions& options_;
    const SpecialScheme* const special_;
    const KeyHost host_;
    KeyUnits out_;
    std::size_t hostStart_ = 0, hostEnd_ = 0;
};

/// The URL as the grammar has it: what only the URL standard leaves as it is, escaped.
URL byGrammar(const URL& url) {
    const Units text = url.absoluteString(), authority = url.part(URLPart::Authority),
                fragment = url.part(URLPart::Fragment);
    return URL::URLWithString(escapes::escaped(text, UTF8StringEncoding, [&](std::size_t i) {
        const char16_t* const unit = text.data() + i;
        if (*unit == u'%') return escapes::escapeAt(text, i) >= 0;
        const bool isInAuthority =
            unit >= authority.data() && unit < authority.data() + authority.size();
        if (isInAuthority) return grammar::isURLUnit(*unit);
        return grammar::isPathUnit(*unit) || *unit == u'?' || unit + 1 == fragment.data();
    }));
}

}  // namespace

String pageKey(const URL& url, const PageKeyOptions& options) {
    if (url.isAbsent()) return {};
    MarkedURL marked(url.absoluteString());
    grammar::Parts parts;
    if (!URLMaker::isOfWeb(url)) {
        marked.parts = &URLMaker::tailOf(url).parts;
    } else if (marked.isPlain && !marked.marks.hash) {
        // The grammar takes it as it stands, though it may cut it otherwise.
        if (!grammar::cutByMarks(marked.text, marked.marks, parts)) return {};
        marked.parts = &parts;
    } else {
        return pageKey(byGrammar(url), options);
    }
    return KeyWriter(marked, options).key();
}

}  // namespace velmo
