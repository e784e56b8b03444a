#include <velmocore/markup/JunkStripping.h>

#include <bitset>

#include <velmocore/url/URLSchemes.h>

#include "markup/PageRebuilding.h"
#include "markup/TagName.h"
#include "markup/TagSupport.h"

namespace velmo {
namespace {

using namespace detail;

using Units = std::u16string_view;

/// Whether what follows the tag stands inside of its element.
bool beginsContents(const Tag& tag) { return isOpening(tag) && !isSelfClosing(tag); }

/// What active content is told by.
enum : std::size_t { Object, Param, Applet, Embed, Iframe, Audio, Video, Canvas, NoScript, None };

std::size_t activeElement(PackedName name) {
    switch (name) {
        case packed("object"):
            return Object;
        case packed("param"):
            return Param;
        case packed("applet"):
            return Applet;
        case packed("embed"):
            return Embed;
        case packed("iframe"):
            return Iframe;
        case packed("audio"):
            return Audio;
        case packed("video"):
            return Video;
        case packed("canvas"):
            return Canvas;
        case packed("noscript"):
            return NoScript;
        default:
            return None;
    }
}

/// Whether the tag goes without a trace. There is no "frames" in HTML, but it was always meant.
bool isDropped(PackedName name) {
    return name == packed("link") || name == packed("frame") || name == packed("frames") ||
           name == packed("script");
}

class StripObjectsHandler {
public:
    explicit StripObjectsHandler(bool replaceImages) : replaceImages_(replaceImages) {}

    bool operator()(const Tag& tag, PageRebuilder& out) {
        if (inside_.none()) out.keepText(tag);
        if (tag.kind == TagKind::Comment) return false;
        const PackedName name = packedName(tag);
        if (const std::size_t element = activeElement(name); element != None)
            inside_[element] = beginsContents(tag);
        else if (replaceImages_ && name == packed("img"))
            writeAlternative(tag, out);
        else if (!isDropped(name))
            out.keepTag(tag);
        return false;
    }

private:
    static void writeAlternative(const Tag& image, PageRebuilder& out) {
        Units text = attributeOf(image, "ALT");
        if (text.empty()) text = attributeOf(image, "TITLE");
        if (text.empty()) return;
        if (!out.endsWhite()) out.write(u" ");
        out.write(text);
        out.write(u"\n");
    }

    const bool replaceImages_;
    std::bitset<None> inside_;  ///< an element inside of its like is not counted
};

class StripLinksHandler {
public:
    bool operator()(const Tag& tag, PageRebuilder& out) {
        if (!skipping_) out.keepText(tag);
        if (tag.isNamed("A"))
            skipping_ = isOpening(tag);
        else if (!tag.isNamed("LINK"))
            out.keepTag(tag);
        return false;
    }

private:
    bool skipping_ = false;
};

bool isFileLink(Units link) {
    const String scheme = stringURLScheme(link);
    return scheme.isEmpty() || keyword::equals(scheme, "FILE");
}

class StripFileLinksHandler {
public:
    bool operator()(const Tag& tag, PageRebuilder& out) {
        if (!skipping_) out.keepText(tag);
        const bool isLink = tag.isNamed("A");
        if (isLink && beginsContents(tag)) skipping_ = isFileLink(attributeOf(tag, "HREF"));
        if (!isLink || !skipping_) out.keepTag(tag);
        return false;
    }

private:
    bool skipping_ = false;
};

}  // namespace

String stripObjectsAndReplaceImages(const String& page, bool replaceImages, const WebRules& web) {
    return rebuiltPage(page, web, StripObjectsHandler(replaceImages));
}

String stripLinks(const String& page, const WebRules& web) {
    return rebuiltPage(page, web, StripLinksHandler());
}

String stripFileLinks(const String& page, const WebRules& web) {
    return rebuiltPage(page, web, StripFileLinksHandler());
}

}  // namespace velmo
