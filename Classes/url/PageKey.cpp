// A key is written once, from left to right, into the string that it becomes: scheme, host and
// port, then the path, which is put right in its place, and the query part by part. Nothing that is
// written gets longer than it was, but for the slash behind a file's scheme.
//
// A key must be its own key, so that whatever is left out is looked for in what stands there then:
// escapes are decoded before dots, sessions and index pages are looked for, and those are taken off
// the end as long as there are any.
#include <velmocore/url/PageKey.h>

#include <algorithm>
#include <array>
#include <vector>

#include "platform/Ascii.h"
#include "text/Keyword.h"
#include "url/Escapes.h"
#include "url/Reductions.h"
#include "url/SessionNames.h"
#include "url/SpecialSchemes.h"
#include "url/URLMaker.h"
#include "url/WebHosts.h"

namespace velmo {
namespace {

using namespace detail;
using Units = std::u16string_view;

/// What may stand for itself in a path, and in a query besides: escaped or not it says the same.
constexpr std::array<bool, 128> unitsOf(std::string_view others) {
    std::array<bool, 128> table{};
    for (char16_t unit = 0; unit < 128; ++unit)
        table[unit] = ascii::isLetterOrDigit(unit) ||
                      others.find(static_cast<char>(unit)) != std::string_view::npos;
    return table;
}
constexpr auto PlainInPath = unitsOf("-._~!$'()*,:@+&");
constexpr auto PlainInQuery = unitsOf("-._~!$'()*,:@/?");

/// Appends units with their escapes decoded where these need not be, and in capitals elsewhere.
void appendDecoded(StringBuilder& out, Units units, const std::array<bool, 128>& plain) {
    char16_t* write = out.prepare(units.size());
    const char16_t* const start = write;
    for (std::size_t i = 0; i < units.size(); ++i) {
        // A URL has no broken escapes.
        if (units[i] != u'%') {
            *write++ = units[i];
            continue;
        }
        const unsigned byte = ascii::hexValue(units[i + 1]) << 4 | ascii::hexValue(units[i + 2]);
        if (byte < 128 && plain[byte]) {
            *write++ = static_cast<char16_t>(byte);
        } else if (byte == ' ' && &plain == &PlainInQuery) {
            *write++ = u'+';
        } else {
            *write++ = u'%';
            *write++ = ascii::toUpper(units[i + 1]);
            *write++ = ascii::toUpper(units[i + 2]);
        }
        i += 2;
    }
    out.commit(static_cast<std::size_t>(write - start));
}

void appendLower(StringBuilder& out, Units units) {
    char16_t* const write = out.prepare(units.size());
    std::transform(units.begin(), units.end(), write, ascii::toLower<char16_t>);
    out.commit(units.size());
}

Units withoutLastDots(Units host) {
    while (host.ends_with(u'.')) host.remove_suffix(1);
    return host;
}

/// "index" or "default" with one of the extensions that servers take for a folder's page.
bool isIndexPage(Units component) {
    constexpr std::string_view Extensions[] = {
        "HTML", "PHP",  "HTM",  "ASPX", "ASP", "JSP",  "CFM",   "SHTML", "XHTML", "PHTML",
        "PHP3", "PHP4", "PHP5", "CGI",  "PL",  "JSPX", "JHTML", "MSPX",  "DO",    "PY",
    };
    for (const std::string_view stem : {"INDEX.", "DEFAULT."}) {
        if (!keyword::beginsWith(component, stem)) continue;
        const Units extension = component.substr(stem.size());
        for (const std::string_view known : Extensions)
            if (keyword::equals(extension, known)) return true;
    }
    return false;
}

/// A parameter with its name and its value, in a text that lives elsewhere.
struct Parameter {
    Units text;

    Units name() const { return text.substr(0, text.find(u'=')); }
    Units value() const {
        const std::size_t equals = text.find(u'=');
        return equals == Units::npos ? Units() : text.substr(equals + 1);
    }
};

class KeyWriter {
public:
    KeyWriter(const URL& url, const PageKeyOptions& options)
        : url_(url), options_(options), out_(url.absoluteString().length() + 4) {}

    String key() {
        const Units scheme = url_.part(URLPart::Scheme);
        const bool isFile = url_.isFileURL();
        if (scheme.data()) writeScheme(scheme);
        if (!url_.part(URLPart::Authority).data() && !isFile) {
            const Units whole = withoutAnchor(url_.absoluteString());
            out_.append(whole.substr(scheme.data() ? scheme.size() + 1 : 0));
            return out_.finish();
        }
        out_.append(u"//");
        writeHost();
        writePath(options_.indexPages && !isFile);
        writeQuery();
        writeAddress();
        return out_.finish();
    }

private:
    void writeScheme(Units scheme) {
        // With the port of the other one it is a place of its own.
        const bool isFolded =
            options_.foldScheme && url_.port() != 80 && keyword::equals(scheme, "HTTPS");
        appendLower(out_, isFolded ? scheme.substr(0, 4) : scheme);
        out_.append(u':');
    }

    void writeHost() {
        const SpecialScheme* const special = specialSchemeNamed(url_.part(URLPart::Scheme));
        hostStart_ = out_.length();
        const bool isDomain = special && appendDomain(url_.part(URLPart::Host));
        if (!isDomain) appendLower(out_, withoutLastDots(url_.part(URLPart::Host)));
        if (isDomain && options_.foldWWW) removeWWW();
        hostEnd_ = out_.length();
        const auto port = url_.port();
        if (port && !(special && *port == special->port)) {
            out_.append(u':');
            for (const char digit : std::to_string(*port))
                out_.append(static_cast<char16_t>(digit));
        }
    }

    /// The host in its ASCII form. False if it has none, or one that a URL holds in escapes only.
    bool appendDomain(Units host) {
        if (!appendDomainHost(out_, withoutLastDots(host))) return false;
        if (out_.back() == u'.') {
            // Letters of people may become dots at its end; what is left may be an address.
            const std::u16string rest(withoutLastDots(out_.view().substr(hostStart_)));
            out_.truncate(hostStart_);
            if (!appendDomainHost(out_, rest)) return false;
        }
        const Units written = out_.view().substr(hostStart_);
        if (std::all_of(written.begin(), written.end(), grammar::isURLUnit)) return true;
        out_.truncate(hostStart_);
        return false;
    }

    /// "www." alone in front of an ending is a name like any other.
    void removeWWW() {
        Units host = out_.view().substr(hostStart_);
        while (host.starts_with(u"www.") && host.find(u'.', 4) != Units::npos)
            host.remove_prefix(4);
        std::char_traits<char16_t>::move(out_.data() + hostStart_, host.data(), host.size());
        out_.truncate(hostStart_ + host.size());
    }

    void writePath(bool withoutIndex) {
        const std::size_t start = out_.length();
        appendDecoded(out_, wholePathOf(url_), PlainInPath);
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
        while (withoutIndex && out_.length() > start && isIndexPage(lastComponent(start)))
            dropLastComponent(start);
        if (out_.length() == start) out_.append(u'/');
    }

    void writeComponent(char16_t* units, std::size_t length, std::size_t start) {
        if (options_.sessionIDs) length = withoutSessions(units, length);
        const Units component(units, length);
        if (component.empty() || component == u".") return;
        if (component == u"..") return dropLastComponent(start);
        if (options_.sessionIDs && isSessionComponent(component)) return;
        // Some write parameters as folders.
        if (component.find(u'=') != Units::npos && isTracking(Parameter{component}.name())) return;
        char16_t* const write = out_.prepare(length + 1);
        std::char_traits<char16_t>::move(write + 1, units, length);
        *write = u'/';
        out_.commit(length + 1);
    }

    /// Takes the sessions out of a component's parameters, and gives the length that is left.
    static std::size_t withoutSessions(char16_t* units, std::size_t length) {
        const Units component(units, length);
        std::size_t start = component.find(u';');
        if (start == Units::npos) return length;
        const bool hasToken = keyword::contains(component, "CFTOKEN=");
        std::size_t write = start;
        while (start < length) {
            const std::size_t end = std::min(component.find(u';', start + 1), length);
            const Parameter parameter{component.substr(start + 1, end - start - 1)};
            const bool isClient = hasToken && keyword::equals(parameter.name(), "CFID");
            if (!isClient && !isSessionParameter(parameter.name(), parameter.value())) {
                std::char_traits<char16_t>::move(units + write, units + start, end - start);
                write += end - start;
            }
            start = end;
        }
        return write;
    }

    Units lastComponent(std::size_t start) const {
        const Units path = out_.view().substr(start);
        return path.substr(path.rfind(u'/') + 1);
    }
    void dropLastComponent(std::size_t start) {
        const std::size_t slash = out_.view().substr(start).rfind(u'/');
        if (slash != Units::npos) out_.truncate(start + slash);
    }

    void writeQuery() {
        const Units query = url_.part(URLPart::Query);
        if (query.empty()) return;
        StringBuilder decoded(query.size());
        appendDecoded(decoded, query, PlainInQuery);
        std::vector<Parameter> kept;
        for (Units rest = decoded.view(); !rest.empty();) {
            const Parameter parameter{rest.substr(0, endOfParameter(rest))};
            rest.remove_prefix(std::min(parameter.text.size() + 1, rest.size()));
            if (isKept(parameter)) kept.push_back(parameter);
        }
        removeColdFusionIds(kept);
        if (options_.sortQuery)
            std::stable_sort(kept.begin(), kept.end(), [](const Parameter& a, const Parameter& b) {
                return a.name() < b.name();
            });
        for (std::size_t i = 0; i < kept.size(); ++i) {
            out_.append(i == 0 ? u'?' : u'&');
            out_.append(kept[i].text);
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

    bool isKept(const Parameter& parameter) const {
        const Units name = parameter.name(), value = parameter.value();
        // What is left of a & that was written as a reference.
        if (parameter.text.empty() || parameter.text == u"amp") return false;
        if (options_.emptyParams && name.size() + 1 == parameter.text.size()) return false;
        if (options_.sessionIDs && isSessionParameter(name, value)) return false;
        return !isTracking(name);
    }

    bool isTracking(Units name) const {
        const auto& known =
            options_.parameters ? *options_.parameters : TrackingParameters::common();
        return options_.tracking && known.contains(name, host());
    }

    /// The number of a client is one of a session only beside the token, which is gone already.
    void removeColdFusionIds(std::vector<Parameter>& kept) const {
        if (!options_.sessionIDs || !keyword::contains(url_.part(URLPart::Query), "CFTOKEN"))
            return;
        std::erase_if(kept, [](const Parameter& p) { return keyword::equals(p.name(), "CFID"); });
    }

    /// What stands behind a # if it is part of the address.
    void writeAddress() {
        const Units fragment = url_.part(URLPart::Fragment);
        if (fragment.size() < 2 || (fragment[0] != u'!' && fragment[0] != u'/')) return;
        out_.append(u'#');
        appendDecoded(out_, fragment, PlainInPath);
    }

    Units host() const { return out_.view().substr(hostStart_, hostEnd_ - hostStart_); }

    const URL& url_;
    const PageKeyOptions& options_;
    StringBuilder out_;
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
    if (URLMaker::isOfWeb(url)) return pageKey(byGrammar(url), options);
    return KeyWriter(url, options).key();
}

}  // namespace velmo
