// The basic URL parser of the URL standard. The standard walks its states unit by unit; the first #
// ends what the states see of the text, and the first ? in front of that, in whatever state it is
// met, so that both are cut off ahead and each state becomes a function of the text in between.
#include "url/WebResolution.h"

#include <algorithm>
#include <string>

#include "platform/Ascii.h"
#include "url/Reductions.h"
#include "url/URLMaker.h"
#include "url/WebURLWriter.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

bool isControlOrSpace(char16_t unit) { return unit <= 0x20; }
bool isTabOrFeed(char16_t unit) { return unit == u'\t' || unit == u'\n' || unit == u'\r'; }

/// What stands behind a unit, if it is there; both views are of one text.
struct Tail {
    Units text;
    bool isPresent = false;
};
Tail cutTail(Units& text, char16_t unit) {
    const std::size_t at = indexOf(text, unit);
    if (at == text.size()) return {};
    const Tail tail{text.substr(at + 1), true};
    text = text.substr(0, at);
    return tail;
}

bool isOpaque(const URL& url) {
    return !url.part(URLPart::Authority).data() && !url.part(URLPart::Path).starts_with(u'/');
}

/// The length of the scheme that a text begins with; 0 if there is none.
std::size_t lengthOfScheme(Units text) {
    if (text.empty() || !ascii::isLetter(text[0])) return 0;
    std::size_t i = 1;
    while (i < text.size() && (ascii::isLetterOrDigit(text[i]) || text[i] == u'+' ||
                               text[i] == u'-' || text[i] == u'.'))
        ++i;
    return i < text.size() && text[i] == u':' ? i : 0;
}

class Parser {
public:
    Parser(Units text, const URL& base, StringEncoding encoding)
        : base_(base),
          encoding_(encoding),
          fragment_(cutTail(text, u'#')),
          query_(cutTail(text, u'?')),
          rest_(text),
          out_(base.absoluteString().length() + text.size() + query_.text.size() +
               fragment_.text.size() + 16) {}

    URL url() {
        const std::size_t scheme = lengthOfScheme(rest_);
        if (!(scheme ? readScheme(scheme) : readWithoutScheme())) return {};
        if (query_.isPresent) out_.query(query_.text, encoding_);
        if (query_.isPresent || !keepsQuery_) return finished();
        out_.queryOf(base_);
        return finished();
    }

private:
    URL finished() {
        if (fragment_.isPresent) out_.fragment(fragment_.text);
        return URLMaker::made(out_.finish());
    }

    bool startsWithSlash() const { return !rest_.empty() && out_.isSlash(rest_[0]); }
    bool takeSlash() {
        if (!startsWithSlash()) return false;
        rest_.remove_prefix(1);
        return true;
    }
    std::size_t lengthToSlash() const {
        const auto slash = std::find_if(rest_.begin(), rest_.end(),
                                        [this](char16_t unit) { return out_.isSlash(unit); });
        return static_cast<std::size_t>(slash - rest_.begin());
    }
    bool hasBaseOfScheme() const {
        return !base_.isAbsent() && base_.part(URLPart::Scheme) == out_.scheme();
    }

    bool readScheme(std::size_t length) {
        out_.scheme(rest_.substr(0, length));
        rest_.remove_prefix(length + 1);
        if (out_.isFile()) return readFile();
        if (!out_.isSpecial()) return readOther();
        // "http:a" is relative where the page is of http too.
        if (hasBaseOfScheme() && !rest_.starts_with(u"//")) return readRelative();
        return readAuthority();
    }

    bool readWithoutScheme() {
        if (base_.isAbsent()) return false;
        out_.scheme(base_.part(URLPart::Scheme));
        if (out_.isFile()) return readFile();
        if (!isOpaque(base_)) return readRelative();
        // Only an anchor is relative to a text without folders.
        if (!rest_.empty() || query_.isPresent || !fragment_.isPresent) return false;
        return keepPath();
    }

    /// What follows the colon of a scheme that is not special.
    bool readOther() {
        if (!takeSlash()) {
            out_.opaquePath(rest_);
            return true;
        }
        if (takeSlash()) return readAuthority();
        out_.path(rest_);
        return true;
    }

    bool readRelative() {
        if (takeSlash()) {
            if (takeSlash()) return readAuthority();
            out_.authorityOf(base_);
            out_.path(rest_);
            return true;
        }
        out_.authorityOf(base_);
        if (rest_.empty()) return keepPath();
        out_.path(rest_, base_);
        return true;
    }

    /// The path of the base, and its query unless there is another one.
    bool keepPath() {
        out_.pathOf(base_);
        keepsQuery_ = true;
        return true;
    }

    bool readAuthority() {
        // However many slashes there are, special schemes have a host behind them.
        while (out_.isSpecial() && takeSlash()) {
        }
        const std::size_t length = lengthToSlash();
        if (!out_.authority(rest_.substr(0, length))) return false;
        rest_.remove_prefix(length);
        return readPath();
    }

    bool readPath() {
        // Only special URLs always have a path.
        if (rest_.empty() && !out_.isSpecial()) {
            out_.opaquePath(u"");
            return true;
        }
        takeSlash();
        out_.path(rest_);
        return true;
    }

    bool readFile() {
        const bool hasFileBase = hasBaseOfScheme();
        if (takeSlash()) {
            if (takeSlash()) return readFileHost();
            return readFileOnDrive(hasFileBase);
        }
        if (!hasFileBase) {
            out_.fileHost(u"");
            out_.path(rest_);
            return true;
        }
        out_.authorityOf(base_);
        if (rest_.empty()) return keepPath();
        out_.path(rest_, beginsWithDriveLetter(rest_) ? URL() : base_);
        return true;
    }

    /// What follows one slash: it is on the drive of the base unless it names one itself.
    bool readFileOnDrive(bool hasFileBase) {
        if (hasFileBase)
            out_.authorityOf(base_);
        else
            out_.fileHost(u"");
        if (hasFileBase && !beginsWithDriveLetter(rest_))
            out_.pathOnDriveOf(base_, rest_);
        else
            out_.path(rest_);
        return true;
    }

    bool readFileHost() {
        const std::size_t length = lengthToSlash();
        const Units host = rest_.substr(0, length);
        // A drive is the first component of a path, though it stands where a host would.
        const bool isDrive = isDriveLetter(host);
        if (!out_.fileHost(isDrive ? Units() : host)) return false;
        if (!isDrive) {
            rest_.remove_prefix(length);
            takeSlash();
        }
        out_.path(rest_);
        return true;
    }

    const URL& base_;
    const StringEncoding encoding_;
    Tail fragment_, query_;
    Units rest_;  ///< what is not read yet
    WebURLWriter out_;
    bool keepsQuery_ = false;
};

}  // namespace

Units withoutControlsAround(Units text) noexcept {
    while (!text.empty() && isControlOrSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isControlOrSpace(text.back())) text.remove_suffix(1);
    return text;
}

URL webURL(Units link, const URL& base, StringEncoding encoding) {
    link = withoutControlsAround(link);
    std::u16string joined;
    if (std::any_of(link.begin(), link.end(), isTabOrFeed)) {
        joined = link;
        std::erase_if(joined, isTabOrFeed);
        link = joined;
    }
    // The steps take a base that was read by them.
    if (base.isAbsent() || URLMaker::isOfWeb(base)) return Parser(link, base, encoding).url();
    const URL read = webURL(base.absoluteString(), URL(), UTF8StringEncoding);
    return read.isAbsent() ? read : Parser(link, read, encoding).url();
}

URL urlLike(const URL& other, const String& text) {
    URL url = URL::URLWithString(text);
    if (!url.isAbsent() || !URL::URLWithString(other.absoluteString()).isAbsent()) return url;
    return webURL(text, URL(), UTF8StringEncoding);
}

}  // namespace velmo::detail
