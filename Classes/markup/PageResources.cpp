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
    bool addNormalized(Units value, const WebRules& web) {
        return add(NormalizedLink(value, {.web = web}).view());
    }
    /// The value of an attribute.
    bool addNormalized(const Tag& tag, std::string_view attribute) {
        return addNormalized(attributeOf(tag, attribute), tag.web);
    }
    void addRelLink(const Tag& tag) { add(normalizedRelLink(attributeOf(tag, "HREF"), tag.web)); }

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
bool relContains(const Tag& tag, std::size_t leastLength,
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
    RetrieveLinksAndFramesHandler(bool wantsLinks, const URL& page)
        : wantsLinks_(wantsLinks), page_(page) {}

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
            retrieveMeta(tag);
        } else if (tag.isNamed("AREA")) {
            addLink(tag);
        } else if (tag.isNamed("BASE")) {
            if (isOpening(tag)) applyBaseRule(tag, page_, result_.baseURL);
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
        if (wantsLinks_ && !tag.isClosing()) references_.addNormalized(tag, "HREF");
    }

    void addFrame(const Tag& tag) {
        if (!tag.isClosing()) references_.addNormalized(tag, "SRC");
    }

    /// The title is the text in front of its closing tag, where all of it has been seen.
    void retrieveTitle(const Tag& tag) {
        if (endsElement(tag)) result_.title = tag.hasText() ? tag.text() : Units(u"");
    }

    void retrieveMeta(const Tag& tag) {
        // A tag that refreshes is nothing else, whatever its name says.
        if (keyword::equals(attributeOf(tag, "HTTP-EQUIV"), "REFRESH")) {
            result_.refresh = contentAttributeOfTagCharacters(tag.whole(), tag.web);
            return;
        }
        const Units name = attributeOf(tag, "NAME");
        if (keyword::equals(name, "ROBOTS"))
            addRobots(contentAttributeOfTagCharacters(tag.whole(), tag.web));
        else if (keyword::equals(name, "REVISIT-AFTER"))
            result_.revisit = contentAttributeOfTagCharacters(tag.whole(), tag.web);
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
    const URL& page_;
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
void addSheetOrScriptToSet(References& references, const Tag& tag) {
    const Units element = tag.whole();
    // Of the opening tag only: a script's text may hold what looks like an attribute.
    if (references.addNormalized(attributeOf(openingTagOf(tag), "SRC", tag.web), tag.web)) return;
    const std::uint64_t import = fastCaseInsensitiveUnicharsContainChars(element, "@import");
    if (import == NotFound) return;
    const std::size_t open = element.find(u'"', import);
    if (open == Units::npos) return;
    const std::size_t close = element.find(u'"', open + 1);
    if (close != Units::npos)
        references.addNormalized(element.substr(open + 1, close - open - 1), tag.web);
}

/// Whether the REL of a link tag names an icon of the site.
bool namesFavIcon(const Tag& tag) {
    if (!tag.web.linkTags) return relContains(tag, 13, {"SHORTCUT ICON"});
    return keyword::equals(attributeOf(tag, "REL"), "ICON") ||
           relContains(tag, 13, {"SHORTCUT ICON"});
}

}  // namespace

HtmlReferences detail::referencesOf(TagWalk walk, bool wantsLinks, const URL& page) {
    RetrieveLinksAndFramesHandler handler(wantsLinks, page);
    walk(handler);
    return handler.finish();
}

std::set<String> detail::imagesOf(TagWalk walk) {
    return referencesOfOpeningTags(walk, [](References& references, const Tag& tag) {
        if (tag.isNamed("IMG"))
            references.addNormalized(tag, "SRC");
        else if (tag.isNamed("BODY"))
            references.addNormalized(tag, "BACKGROUND");
        else if (tag.isNamed("LINK") && relContains(tag, 4, {"ICON", "IMAGE"}))
            references.addRelLink(tag);
    });
}

std::set<String> detail::stylesheetsAndScriptsOf(TagWalk walk) {
    return referencesOfOpeningTags(walk, [](References& references, const Tag& tag) {
        if (tag.isNamed("SCRIPT") || tag.isNamed("STYLE"))
            addSheetOrScriptToSet(references, tag);
        else if (tag.isNamed("LINK") && relContains(tag, 5, {"STYLE", "SHEET", "SCRIPT"}))
            references.addRelLink(tag);
    });
}

std::set<String> detail::embeddedObjectsOf(TagWalk walk) {
    return referencesOfOpeningTags(walk, [](References& references, const Tag& tag) {
        if (tag.nameLength < 5 || tag.nameLength > 6) return;
        const bool isObject = tag.isNamed("OBJECT");
        if (isObject || tag.isNamed("SOURCE") || tag.isNamed("AUDIO") || tag.isNamed("VIDEO") ||
            tag.isNamed("TRACK") || tag.isNamed("EMBED"))
            references.addNormalized(tag, isObject ? "DATA" : "SRC");
    });
}

HtmlReferences htmlFramesSet(Units page, const ReferenceOptions& options) {
    return referencesOf(scanOf(page, options.web), false, options.url);
}
HtmlReferences htmlLinksAndFramesSet(Units page, const ReferenceOptions& options) {
    return referencesOf(scanOf(page, options.web), true, options.url);
}
std::set<String> htmlImages(Units page, const WebRules& web) { return imagesOf(scanOf(page, web)); }
std::set<String> htmlStylesheetsAndScripts(Units page, const WebRules& web) {
    return stylesheetsAndScriptsOf(scanOf(page, web));
}
std::set<String> htmlEmbeddedObjects(Units page, const WebRules& web) {
    return embeddedObjectsOf(scanOf(page, web));
}

String htmlFavIcon(Units page, const WebRules& web) {
    String favIcon;
    const auto find = [&](const Tag& tag) {
        favIcon = getFavIcon(tag);
        return !favIcon.isAbsent();
    };
    GetTagsOfString(page, find, web);
    return favIcon;
}

String getFavIcon(const Tag& tag) {
    if (!tag.isNamed("LINK") || !isOpening(tag) || !namesFavIcon(tag)) return {};
    return normalizedRelLink(attributeOf(tag, "HREF"), tag.web);
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
