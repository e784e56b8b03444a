// The standard keeps a record of strings and lists and serializes that in the end. Here each part is
// written where it will stand: what is in the record never changes once the next part begins, but
// for the path, whose last component may be taken back.
#include "url/WebURLWriter.h"

#include <algorithm>
#include <string>

#include "platform/Ascii.h"
#include "text/Keyword.h"
#include "url/Escapes.h"
#include "url/Reductions.h"
#include "url/WebEscapes.h"
#include "url/WebHosts.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

constexpr std::uint32_t LargestPort = 65535;

/// A full stop or its escape, from the start of a text.
bool takeDot(Units& text) {
    const bool isEscape =
        text.size() >= 3 && text[0] == u'%' && text[1] == u'2' && (text[2] | 0x20) == u'e';
    if (!isEscape && !text.starts_with(u'.')) return false;
    text.remove_prefix(isEscape ? 3 : 1);
    return true;
}

/// How many full stops the text is made of, up to two; 0 if it is anything else.
int numberOfDots(Units text) {
    int dots = 0;
    while (dots < 2 && takeDot(text)) ++dots;
    return text.empty() ? dots : 0;
}

/// The path of a base in the record: without what keeps it from looking like an authority.
Units recordedPathOf(const URL& base) {
    Units path = wholePathOf(base);
    if (!base.part(URLPart::Authority).data() && path.starts_with(u"/.//")) path.remove_prefix(2);
    return path;
}

/// Whether a path is a drive and nothing else, or one with more behind it.
bool isDrive(Units path) {
    return path.size() == 3 && path[2] == u':' && isDriveLetter(path.substr(1));
}
bool beginsWithDrive(Units path) {
    return isDrive(path.substr(0, 3)) && (path.size() == 3 || path[3] == u'/');
}

}  // namespace

bool isDriveLetter(Units text) noexcept {
    return text.size() == 2 && ascii::isLetter(text[0]) && (text[1] == u':' || text[1] == u'|');
}

bool beginsWithDriveLetter(Units text) noexcept {
    return isDriveLetter(text.substr(0, 2)) &&
           (text.size() == 2 || text[2] == u'/' || text[2] == u'\\');
}

grammar::Span WebURLWriter::spanFrom(std::size_t start) const {
    return {static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(out_.length() - start)};
}

void WebURLWriter::scheme(Units name) {
    char16_t* const write = out_.prepare(name.size() + 1);
    std::transform(name.begin(), name.end(), write, ascii::toLower<char16_t>);
    write[name.size()] = u':';
    out_.commit(name.size() + 1);
    parts_[URLPart::Scheme] = {0, static_cast<std::uint32_t>(name.size())};
    special_ = specialSchemeNamed(name);
}

void WebURLWriter::beginAuthority() {
    out_.append(u"//");
    authorityStart_ = out_.length();
}

void WebURLWriter::endAuthority() { parts_[URLPart::Authority] = spanFrom(authorityStart_); }

void WebURLWriter::authorityOf(const URL& base) {
    const Units text = base.part(URLPart::Authority);
    if (!text.data()) return;
    beginAuthority();
    out_.append(text);
    endAuthority();
    for (const URLPart inner : {URLPart::User, URLPart::Password, URLPart::Host, URLPart::Port}) {
        const Units part = base.part(inner);
        if (part.data())
            parts_[inner] = {
                static_cast<std::uint32_t>(authorityStart_ +
                                           static_cast<std::size_t>(part.data() - text.data())),
                static_cast<std::uint32_t>(part.size())};
    }
}

bool WebURLWriter::authority(Units text) {
    beginAuthority();
    // All in front of the last one belongs to the credentials.
    if (const std::size_t at = text.rfind(u'@'); at != Units::npos) {
        credentials(text.substr(0, at));
        text.remove_prefix(at + 1);
        if (text.empty()) return false;
    }
    if (!hostAndPort(text)) return false;
    endAuthority();
    return true;
}

void WebURLWriter::credentials(Units text) {
    const std::size_t colon = std::min(text.find(u':'), text.size());
    const Units password = text.substr(std::min(colon + 1, text.size()));
    if (colon == 0 && password.empty()) return;
    const std::size_t start = out_.length();
    appendEncoded(out_, text.substr(0, colon), EncodeSet::UserInfo);
    parts_[URLPart::User] = spanFrom(start);
    if (!password.empty()) {
        out_.append(u':');
        const std::size_t second = out_.length();
        appendEncoded(out_, password, EncodeSet::UserInfo);
        parts_[URLPart::Password] = spanFrom(second);
    }
    out_.append(u'@');
}

bool WebURLWriter::hostAndPort(Units text) {
    bool inBrackets = false;
    std::size_t end = 0;
    for (; end < text.size() && (inBrackets || text[end] != u':'); ++end)
        if (text[end] == u'[' || text[end] == u']') inBrackets = text[end] == u'[';
    if (end == 0 && (isSpecial() || !text.empty())) return false;
    const std::size_t start = out_.length();
    const Units host = text.substr(0, end);
    if (!(isSpecial() ? appendDomainHost(out_, host) : appendOpaqueHost(out_, host))) return false;
    if (out_.length() > start) parts_[URLPart::Host] = spanFrom(start);
    return port(text.substr(std::min(end + 1, text.size())));
}

bool WebURLWriter::port(Units digits) {
    std::uint32_t port = 0;
    for (const char16_t digit : digits) {
        if (!ascii::isDigit(digit)) return false;
        port = port * 10 + static_cast<std::uint32_t>(digit - u'0');
        if (port > LargestPort) return false;
    }
    if (digits.empty() || (special_ && port == special_->port)) return true;
    out_.append(u':');
    const std::size_t start = out_.length();
    for (const char digit : std::to_string(port)) out_.append(static_cast<char16_t>(digit));
    parts_[URLPart::Port] = spanFrom(start);
    return true;
}

bool WebURLWriter::fileHost(Units host) {
    beginAuthority();
    if (!host.empty() && !appendDomainHost(out_, host)) return false;
    // The machine itself is told by no name.
    if (out_.view().substr(authorityStart_) == u"localhost") out_.truncate(authorityStart_);
    endAuthority();
    if (out_.length() > authorityStart_) parts_[URLPart::Host] = spanFrom(authorityStart_);
    return true;
}

void WebURLWriter::beginPath() { pathStart_ = out_.length(); }

void WebURLWriter::endPath() {
    if (!parts_[URLPart::Authority].isPresent() && pathSoFar().starts_with(u"//")) {
        // It would be read as an authority.
        const std::u16string path(pathSoFar());
        out_.truncate(pathStart_);
        out_.append(u"/.");
        out_.append(path);
    }
    grammar::notePathParts(out_.view(), static_cast<std::uint32_t>(pathStart_),
                           static_cast<std::uint32_t>(out_.length()), parts_);
}

void WebURLWriter::pathOf(const URL& base) {
    beginPath();
    out_.append(recordedPathOf(base));
    endPath();
}

void WebURLWriter::path(Units text, const URL& folderOf) {
    beginPath();
    if (!folderOf.isAbsent()) {
        out_.append(recordedPathOf(folderOf));
        leaveFolder();
    }
    components(text);
    endPath();
}

void WebURLWriter::pathOnDriveOf(const URL& base, Units text) {
    beginPath();
    if (const Units path = wholePathOf(base); beginsWithDrive(path)) out_.append(path.substr(0, 3));
    components(text);
    endPath();
}

void WebURLWriter::components(Units text) {
    for (;;) {
        const auto slash =
            static_cast<std::size_t>(std::find_if(text.begin(), text.end(),
                                                  [this](char16_t unit) { return isSlash(unit); }) -
                                     text.begin());
        component(text.substr(0, slash), slash == text.size());
        if (slash == text.size()) return;
        text.remove_prefix(slash + 1);
    }
}

void WebURLWriter::component(Units text, bool isLast) {
    if (const int dots = numberOfDots(text)) {
        if (dots == 2) leaveFolder();
        if (isLast) out_.append(u'/');
        return;
    }
    const bool isFirst = out_.length() == pathStart_;
    out_.append(u'/');
    appendEncoded(out_, text, EncodeSet::Path);
    if (isFirst && isFile() && isDriveLetter(text)) out_.data()[out_.length() - 1] = u':';
}

/// Takes the last component back, but no drive.
void WebURLWriter::leaveFolder() {
    const Units path = pathSoFar();
    if (isFile() && isDrive(path)) return;
    const std::size_t slash = path.rfind(u'/');
    if (slash != Units::npos) out_.truncate(pathStart_ + slash);
}

void WebURLWriter::opaquePath(Units text) {
    beginPath();
    appendEncoded(out_, text, EncodeSet::Control);
    // Who trims what comes out must not change it.
    if (out_.length() > pathStart_ && out_.back() == u' ') {
        out_.truncate(out_.length() - 1);
        out_.append(u"%20");
    }
    endPath();
}

void WebURLWriter::query(Units text, StringEncoding encoding) {
    const bool isEncoded = isSpecial() && !keyword::beginsWith(scheme(), "WS") &&
                           encoding != UTF8StringEncoding && escapes::holdsAscii(encoding);
    const EncodeSet set = isSpecial() ? EncodeSet::SpecialQuery : EncodeSet::Query;
    out_.append(u'?');
    const std::size_t start = out_.length();
    if (isEncoded)
        appendEncoded(out_, text, set, encoding);
    else
        appendEncoded(out_, text, set);
    parts_[URLPart::Query] = spanFrom(start);
}

void WebURLWriter::queryOf(const URL& base) {
    const Units text = base.part(URLPart::Query);
    if (!text.data()) return;
    out_.append(u'?');
    const std::size_t start = out_.length();
    out_.append(text);
    parts_[URLPart::Query] = spanFrom(start);
}

void WebURLWriter::fragment(Units text) {
    out_.append(u'#');
    const std::size_t start = out_.length();
    appendEncoded(out_, text, EncodeSet::Fragment);
    parts_[URLPart::Fragment] = spanFrom(start);
}

String WebURLWriter::finish() {
    if (out_.length() >= grammar::Span::Missing) return {};
    parts_[URLPart::ResourceSpecifier] = spanFrom(parts_[URLPart::Scheme].length + 1);
    return grammar::finishedWith({parts_, true}, out_);
}

}  // namespace velmo::detail
