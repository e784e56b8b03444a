// A key is written once, from left to right, into one buffer: scheme, host and port, then the path,
// which is put right in its place, and the query part by part. Nothing that is written gets longer
// than it was, but for the slash behind a file's scheme and a host that is written in another form.
//
// A key must be its own key, so that whatever is left out is looked for in what stands there then:
// escapes are decoded before dots, sessions and index pages are looked for, and those are taken off
// the end as long as there are any.
//
// Most URLs have a host in ASCII, no escapes and nothing to put right in the path: the marks of path
// and query (see URLMarks.h) tell that at once, and then there is little to do but to copy.
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

/// A URL by the grammar.
struct CutURL {
    const String& string;
    Units text;
    const grammar::Parts& parts;

    Units operator[](URLPart part) const { return parts[part].of(text); }
};

/// The host as a key has it, but for "www.".
struct KeyHost {
    bool isDomain = false;
    String converted;  ///< absent if it is the host in lower case

    KeyHost(Units host, bool isSpecial) {
        if (!isSpecial) return;
        isDomain = isPlainName(host);
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
    KeyWriter(const CutURL& url, const PageKeyOptions& options)
        : url_(url),
          options_(options),
          special_(specialSchemeNamed(url[URLPart::Scheme])),
          host_(url[URLPart::Host], special_),
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
        const Units path = url_.parts.wholePath().of(url_.text);
        if (!writeSettled(path, withoutIndex)) {
            writeComponents(path, start);
            while (withoutIndex && out_.length() > start && isIndexPage(lastComponent(start)))
                dropLastComponent(start);
        }
        if (out_.length() == start) out_.append(u'/');
    }

    /// Writes a path in which there is nothing to put right but its end; false if there is more.
    bool writeSettled(Units path, bool withoutIndex) {
        if (path.size() > UnitBits::MostUnits) return false;
        const URLMarks marks = urlMarksOf(path);
        if (!isSettled(path, marks)) return false;
        const auto slash = [&] {
            return marks.slash.last(static_cast<std::uint32_t>(path.size()));
        };
        if (path.ends_with(u'/')) path.remove_suffix(1);
        while (withoutIndex && !path.empty() && isIndexPage(path.substr(slash() + 1)))
            path = path.substr(0, slash());
        out_.append(path);
        return true;
    }

    static bool isSettled(Units path, const URLMarks& marks) {
        const UnitBits changed = marks.percent | marks.other | marks.equals | marks.semicolon;
        if (changed || marks.slash.before(marks.slash | marks.dot)) return false;
        return (path.empty() || path[0] == u'/') &&
               !scan::contains(path.data(), path.data() + path.size(), u'(');
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
        if (!addPlain(parameters, query)) {
            SmallBuffer<char16_t> decoded(query.size() + escapes::CopySlack);
            add(parameters, {decoded.data(), writeDecoded(decoded.data(), query, PlainInQuery)});
            return parameters.write(out_, query);
        }
        parameters.write(out_, query);
    }

    static void add(KeyParameters& parameters, Units query) {
        const bool hasSemicolon = indexOf(query, u';') < query.size();
        while (!query.empty()) {
            const std::size_t end = hasSemicolon ? endOfParameter(query) : indexOf(query, u'&');
            const Units parameter = query.substr(0, end);
            parameters.add(parameter, indexOf(parameter, u'='));
            query.remove_prefix(std::min(end + 1, query.size()));
        }
    }

    /// The same of a short query without escapes, whose parameters are parted by & alone; false if
    /// it is none.
    static bool addPlain(KeyParameters& parameters, Units query) {
        if (query.size() > UnitBits::LowUnits) return false;
        const ParameterMarks marks = parameterMarksOf(query);
        if (marks.percent || marks.semicolon) return false;
        addByMarks(parameters, query, marks.ampersand.low(), marks.equals.low());
        return true;
    }

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

    const CutURL& url_;
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
    const String& string = url.absoluteString();
    const grammar::Parts* parts = &URLMaker::tailOf(url).parts;
    grammar::Parts others;
    if (URLMaker::isOfWeb(url)) {
        // The grammar may take it as it stands, though it may cut it otherwise.
        if (string.length() > UnitBits::MostUnits) return pageKey(byGrammar(url), options);
        const URLMarks marks = urlMarksOf(string);
        if (marks.other || marks.percent || marks.hash) return pageKey(byGrammar(url), options);
        if (!grammar::cutByMarks(string, marks, others)) return {};
        parts = &others;
    }
    return KeyWriter({string, string, *parts}, options).key();
}

}  // namespace velmo
