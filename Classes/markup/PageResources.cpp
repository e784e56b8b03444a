// One handler a kind of page part, each of which takes references from the tags that it knows.
// Tags are told apart by the length of their name first: most tags of a page are of no interest to
// a handler, and a switch tells so without looking at a unit.
//
// References are normalised but not resolved: pages are read without a known address too, and what
// a reference leads to is the caller's affair.
#include <velmocore/markup/PageResources.h>

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <string>
#include <vector>

#include <velmocore/markup/LinkNormalising.h>
#include <velmocore/markup/TagPredicates.h>
#include <velmocore/text/Comparison.h>
#include <velmocore/text/FastSearch.h>

#include "markup/BaseRule.h"
#include "markup/NormalizedLink.h"
#include "markup/TagSupport.h"
#include "markup/TagWalk.h"
#include "markup/UniqueLinks.h"

namespace velmo {
namespace {

using namespace detail;

using Units = std::u16string_view;

/// References as they come, each once; most of a page's come more than once. They are put
/// in order at the end.
class References {
public:
    /// False if nothing of the value is left.
    bool addNormalized(Units value) { return add(NormalizedLink(value).view()); }
    void addRelLink(Units value) { add(normalizedRelLink(value)); }

    std::set<String> finish() {
        std::sort(list_.begin(), list_.end());
        return {std::make_move_iterator(list_.begin()), std::make_move_iterator(list_.end())};
    }

private:
    bool add(Units link) {
        if (!link.empty()) links_.add(link);
        return !link.empty();
    }

    std::vector<String> list_;
    UniqueLinks links_{list_};
};

/// Whether the tag's REL is long enough and contains one of the words.
bool relContains(Units tag, std::size_t leastLength,
                 std::initializer_list<std::string_view> words) {
    const Units rel = attributeOf(tag, "REL");
    // Most tags have a short REL or none, and are told apart by its length alone.
    if (rel.size() < leastLength) return false;
    for (std::string_view word : words)
        if (keyword::contains(rel, word)) return true;
    return false;
}

class RetrieveLinksAndFramesHandler {
public:
    explicit RetrieveLinksAndFramesHandler(bool wantsLinks) : wantsLinks_(wantsLinks) {}

    HtmlReferences finish() {
        result_.references = references_.finish();
        if (!robots_.empty()) result_.robots = robots_;
        return std::move(result_);
    }

    bool operator()(const Tag& tag) {
        switch (tag.nameLength) {
            case 1:
                if (tag.isNamed("A")) addLink(tag);
                break;
            case 3:
                noteFeed(tag, "RSS");
                break;
            case 4:
                retrieveShortTag(tag);
                break;
            case 5:
                if (tag.isNamed("FRAME")) addFrame(tag);
                if (tag.isNamed("TITLE")) retrieveTitle(tag);
                break;
            case 6:
                if (tag.isNamed("IFRAME")) addFrame(tag);
                break;
            case 7:
                noteFeed(tag, "RDF:RDF");
                break;
            default:
                break;
        }
        return false;
    }

private:
    void retrieveShortTag(const Tag& tag) {
        if (tag.isNamed("LINK")) {
            if (String favIcon = getFavIcon(tag); !favIcon.isAbsent())
                result_.favIcon = std::move(favIcon);
        } else if (tag.isNamed("META")) {
            retrieveMeta(tag.whole());
        } else if (tag.isNamed("AREA")) {
            addLink(tag);
        } else if (tag.isNamed("BASE")) {
            if (isOpening(tag)) applyBaseRule(tag, result_.baseURL);
        } else if (tag.isNamed("HTML") || tag.isNamed("HEAD") || tag.isNamed("BODY")) {
            sawHTML_ = true;
        } else {
            noteFeed(tag, "FEED");
        }
    }

    /// The root of a feed only counts in front of any page: blogs show feeds in their pages.
    void noteFeed(const Tag& tag, std::string_view root) {
        if (!sawHTML_ && tag.isNamed(root)) result_.isFeed = true;
    }

    void addLink(const Tag& tag) {
        if (wantsLinks_ && !tag.isClosing())
            references_.addNormalized(attributeOf(tag.whole(), "HREF"));
    }

    void addFrame(const Tag& tag) {
        if (!tag.isClosing()) references_.addNormalized(attributeOf(tag.whole(), "SRC"));
    }

    /// The title is the text in front of its closing tag, where all of it has been seen.
    void retrieveTitle(const Tag& tag) {
        if (isTagClosed(tag.whole())) result_.title = tag.hasText() ? tag.text() : Units(u"");
    }

    void retrieveMeta(Units tag) {
        // A tag that refreshes is nothing else, whatever its name says.
        if (keyword::equals(attributeOf(tag, "HTTP-EQUIV"), "REFRESH")) {
            result_.refresh = contentAttributeOfTagCharacters(tag);
            return;
        }
        const Units name = attributeOf(tag, "NAME");
        if (keyword::equals(name, "ROBOTS"))
            addRobots(contentAttributeOfTagCharacters(tag));
        else if (keyword::equals(name, "REVISIT-AFTER"))
            result_.revisit = contentAttributeOfTagCharacters(tag);
    }

    /// Many pages say the same twice, for two kinds of robots.
    void addRobots(const String& content) {
        if (content.isEmpty() || isEqualToStringNoCase(content, robots_)) return;
        if (!robots_.empty()) robots_ += u',';
        robots_ += content;
    }

    HtmlReferences result_;
    References references_;
    std::u16string robots_;  ///< grows with each tag, of which a page may have very many
    const bool wantsLinks_;
    bool sawHTML_ = false;
};

/// The references that add takes from the opening tags of a walk.
template <class Add>
std::set<String> referencesOfOpeningTags(TagWalk walk, Add add) {
    References references;
    walk([&](const Tag& tag) {
        // No tag that is asked for has a shorter name; a and p, the most frequent, are passed by
        // here.
        if (tag.nameLength > 2 && isOpening(tag)) add(references, tag);
        return false;
    });
    return references.finish();
}

/// The source of a script or style element, else its first import.
void addSheetOrScriptToSet(References& references, Units element) {
    // Of the opening tag only: a script's text may hold what looks like an attribute.
    if (references.addNormalized(attributeOf(openingTagOf(element), "SRC"))) return;
    const std::uint64_t import = fastCaseInsensitiveUnicharsContainChars(element, "@import");
    if (import == NotFound) return;
    const std::size_t open = element.find(u'"', import);
    if (open == Units::npos) return;
    const std::size_t close = element.find(u'"', open + 1);
    if (close != Units::npos) references.addNormalized(element.substr(open + 1, close - open - 1));
}

}  // namespace

HtmlReferences detail::referencesOf(TagWalk walk, bool wantsLinks) {
    RetrieveLinksAndFramesHandler handler(wantsLinks);
    walk(handler);
    return handler.finish();
}

std::set<String> detail::imagesOf(TagWalk walk) {
    return referencesOfOpeningTags(walk, [](References& references, const Tag& tag) {
        const Units whole = tag.whole();
        if (tag.isNamed("IMG"))
            references.addNormalized(attributeOf(whole, "SRC"));
        else if (tag.isNamed("BODY"))
            references.addNormalized(attributeOf(whole, "BACKGROUND"));
        else if (tag.isNamed("LINK") && relContains(whole, 4, {"ICON", "IMAGE"}))
            references.addRelLink(attributeOf(whole, "HREF"));
    });
}

std::set<String> detail::stylesheetsAndScriptsOf(TagWalk walk) {
    return referencesOfOpeningTags(walk, [](References& references, const Tag& tag) {
        const Units whole = tag.whole();
        if (tag.isNamed("SCRIPT") || tag.isNamed("STYLE"))
            addSheetOrScriptToSet(references, whole);
        else if (tag.isNamed("LINK") && relContains(whole, 5, {"STYLE", "SHEET", "SCRIPT"}))
            references.addRelLink(attributeOf(whole, "HREF"));
    });
}

std::set<String> detail::embeddedObjectsOf(TagWalk walk) {
    return referencesOfOpeningTags(walk, [](References& references, const Tag& tag) {
        if (tag.nameLength < 5 || tag.nameLength > 6) return;
        const bool isObject = tag.isNamed("OBJECT");
        if (isObject || tag.isNamed("SOURCE") || tag.isNamed("AUDIO") || tag.isNamed("VIDEO") ||
            tag.isNamed("TRACK") || tag.isNamed("EMBED"))
            references.addNormalized(attributeOf(tag.whole(), isObject ? "DATA" : "SRC"));
    });
}

HtmlReferences htmlFramesSet(Units page) { return referencesOf(scanOf(page), false); }
HtmlReferences htmlLinksAndFramesSet(Units page) { return referencesOf(scanOf(page), true); }
std::set<String> htmlImages(Units page) { return imagesOf(scanOf(page)); }
std::set<String> htmlStylesheetsAndScripts(Units page) {
    return stylesheetsAndScriptsOf(scanOf(page));
}
std::set<String> htmlEmbeddedObjects(Units page) { return embeddedObjectsOf(scanOf(page)); }

String htmlFavIcon(Units page) {
    String favIcon;
    GetTagsOfString(page, [&](const Tag& tag) {
        favIcon = getFavIcon(tag);
        return !favIcon.isAbsent();
    });
    return favIcon;
}

String getFavIcon(const Tag& tag) {
    if (!tag.isNamed("LINK") || !isOpening(tag)) return {};
    const Units whole = tag.whole();
    if (!relContains(whole, 13, {"SHORTCUT ICON"})) return {};
    return normalizedRelLink(attributeOf(whole, "HREF"));
}

std::string_view getLinkAttribute(Units name) {
    static constexpr struct {
        std::string_view name, attribute;
    } Rows[] = {
        {"A", "HREF"},      {"LINK", "HREF"},  {"AREA", "HREF"},  {"IMG", "SRC"},
        {"FRAME", "SRC"},   {"AUDIO", "SRC"},  {"VIDEO", "SRC"},  {"TRACK", "SRC"},
        {"EMBED", "SRC"},   {"IFRAME", "SRC"}, {"SCRIPT", "SRC"}, {"SOURCE", "SRC"},
        {"OBJECT", "DATA"},
    };
    for (const auto& row : Rows)
        if (keyword::equals(name, row.name)) return row.attribute;
    return {};
}

}  // namespace velmo
