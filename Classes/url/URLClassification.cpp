// A link is judged by hundreds of words, and most links hold none of them. One walk with an
// automaton tells which tables have a word in the link, as bits; the tests then only combine bits,
// and look at the link again where a bit says that it is worth it.
#include <velmocore/url/URLClassification.h>

#include <algorithm>
#include <vector>

#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/CharacterTests.h>

#include "text/Keyword.h"
#include "text/PathParts.h"
#include "url/ClassificationTables.h"
#include "url/KeywordAutomaton.h"

namespace velmo {
namespace {

using namespace detail;
using Units = std::u16string_view;

constexpr KeywordMarks markOf(LinkTable table) {
    return KeywordMarks{1} << static_cast<int>(table);
}

// Words that tests outside the tables look for. Their marks tell that such a test may hold:
// the walk looks past case, which most of the tests do not.
constexpr KeywordMarks AdServer = 1u << 16, AdsDot = 1u << 17, AdPathsAllowed = 1u << 18,
                       Banner = 1u << 19, Counter = 1u << 20;

constexpr Units AdServerWord = u"adserver", AdsDotWord = u"ads.";
constexpr std::string_view AdServerKeyword[] = {"adserver"}, AdsDotKeyword[] = {"ads."},
                           BannerKeyword[] = {"banner."}, CounterKeyword[] = {"counter"};

/// Sites and paths in whose URLs the paths of advertisements mean something else.
constexpr Units AdPathExceptions[] = {u"apple.", u"adsoftheworld.com", u"/adsk/"};
constexpr std::string_view AdPathExceptionKeywords[] = {"apple.", "adsoftheworld.com", "/adsk/"};

const KeywordAutomaton& automaton() {
    static const KeywordAutomaton made = [] {
        std::vector<KeywordList> lists{{AdServer, AdServerKeyword},
                                       {AdsDot, AdsDotKeyword},
                                       {AdPathsAllowed, AdPathExceptionKeywords},
                                       {Banner, BannerKeyword},
                                       {Counter, CounterKeyword}};
        for (const auto& tables : {advertisementTables(), bookmarkletTables(), pageKindTables()})
            for (const LinkTableRows& table : tables)
                lists.push_back({markOf(table.table), table.rows});
        return KeywordAutomaton(lists);
    }();
    return made;
}

bool contains(Units string, Units word) { return string.find(word) != Units::npos; }

/// A link and the tables that have a row in it.
struct Link {
    Units string;
    KeywordMarks marks;

    explicit Link(Units text) : string(text), marks(automaton().marksIn(text)) {}

    bool has(KeywordMarks any) const { return (marks & any) != 0; }
    bool isIn(LinkTable table, std::size_t leastLength) const {
        return string.size() >= leastLength && has(markOf(table));
    }
};

bool isImageAd(const Link& link) { return link.isIn(LinkTable::ImageAds, 12); }
bool isAdSense(const Link& link) { return link.isIn(LinkTable::AdSense, 12) || isImageAd(link); }
bool isRecaptcha(const Link& link) { return link.isIn(LinkTable::Recaptchas, 27); }
bool isTranslation(const Link& link) { return link.isIn(LinkTable::Translations, 22); }
bool isForum(const Link& link) { return link.isIn(LinkTable::Forums, 4); }
bool isCached(const Link& link) { return link.isIn(LinkTable::Caches, 12); }

bool isBookmarklet(const Link& link) {
    if (link.isIn(LinkTable::QueriedBookmarklets, 16) && contains(link.string, u"?")) return true;
    return link.isIn(LinkTable::Bookmarklets, 18);
}

/// Whether the text without its digits ends in "-t-.html".
bool endsAsThread(Units string) {
    constexpr std::string_view Ending = "-T-.HTML";
    const CharacterSetRep& digits = digitCharacterSetRep();
    std::size_t left = Ending.size();
    for (std::size_t i = string.size(); left > 0; --left) {
        while (i > 0 && digits.contains(string[i - 1])) --i;
        if (i == 0 || keyword::upper(string[i - 1]) != static_cast<char16_t>(Ending[left - 1]))
            return false;
        --i;
    }
    return true;
}

bool isTopicOrThread(const Link& link) {
    return link.isIn(LinkTable::Topics, 13) ||
           (endsAsThread(link.string) && countNumbers(link.string) >= 2);
}

/// The first place of the word decides, and what stands in front of it: words that end in
/// e, o or p go on with "ads" often enough.
bool standsAlone(Units string, Units word) {
    const std::size_t at = string.find(word);
    return at != Units::npos && (at == 0 || !contains(u"EOPeop", string.substr(at - 1, 1)));
}

bool hasAdPath(const Link& link) {
    return link.has(markOf(LinkTable::AdPaths)) &&
           !(link.has(AdPathsAllowed) &&
             std::any_of(std::begin(AdPathExceptions), std::end(AdPathExceptions),
                         [&](Units exception) { return contains(link.string, exception); }));
}

bool isNamedAsAd(Units string) {
    const Units name = lastComponentOf(string);
    if (name.size() < 8) return false;
    if (name.size() >= 11 && contains(name, u"counter") && keyword::contains(name, "HTM"))
        return true;
    return keyword::beginsWith(name, "BANNER.");
}

bool isAdvertisement(const Link& link, bool includingCommonHosts) {
    if (link.string.size() < 4) return false;
    return isAdSense(link) || link.isIn(LinkTable::AdFragments, 5) || hasAdPath(link) ||
           (link.has(AdServer) && standsAlone(link.string, AdServerWord)) ||
           (link.has(AdsDot) && standsAlone(link.string, AdsDotWord)) ||
           (includingCommonHosts && link.isIn(LinkTable::AdvertiserHosts, 9)) ||
           (link.has(Banner | Counter) && isNamedAsAd(link.string));
}

}  // namespace

bool stringURLIsImageAd(Units string) { return isImageAd(Link(string)); }
bool stringURLIsAdSense(Units string) { return isAdSense(Link(string)); }
bool stringURLIsBookmarklet(Units string) { return isBookmarklet(Link(string)); }
bool stringURLIsRecaptcha(Units string) { return isRecaptcha(Link(string)); }
bool stringURLIsTranslation(Units string) { return isTranslation(Link(string)); }
bool stringURLIsTopicOrThread(Units string) { return isTopicOrThread(Link(string)); }
bool stringURLIsForum(Units string) { return isForum(Link(string)); }
bool stringURLIsCached(Units string) { return isCached(Link(string)); }

bool stringURLIsAdvertisementIncludingCommonHosts(Units string, bool includingCommonHosts) {
    return isAdvertisement(Link(string), includingCommonHosts);
}

URLClasses classesOfStringURL(Units string, bool includingCommonHosts) {
    const Link link(string);
    return {.imageAd = isImageAd(link),
            .adSense = isAdSense(link),
            .advertisement = isAdvertisement(link, includingCommonHosts),
            .bookmarklet = isBookmarklet(link),
            .recaptcha = isRecaptcha(link),
            .translation = isTranslation(link),
            .topicOrThread = isTopicOrThread(link),
            .forum = isForum(link),
            .cached = isCached(link)};
}

}  // namespace velmo
