// Each operation is a rule of a rebuilding. A script or style element comes as one tag, whose
// closing tag the scan never reports: where elements are told by their two tags, it is both of
// them at once, or its body would seem to reach to the end of the text. So is a comment.
#include <velmocore/markup/TagStripping.h>

#include <string>
#include <vector>

#include <velmocore/text/FastCompare.h>

#include "markup/PageRebuilding.h"
#include "markup/TagSupport.h"

namespace velmo {
namespace {

using namespace detail;

using Units = std::u16string_view;

/// Whether the tag is a whole element, or of a kind that has no closing tags.
bool isWholeElement(const Tag& tag) { return tag.kind != TagKind::Element || hasOwnBody(tag); }

std::u16string widened(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

String absentIfEmpty(const String& text) { return text.isEmpty() ? String() : text; }

/// Writes the tag without its attributes, but for the one that tells where it leads.
void writeBareTag(const Tag& tag, Units name, PageRebuilder& out) {
    if (tag.isClosing()) {
        out.write(u"</");
        out.write(name);
        return out.write(u">");
    }
    const Units opening = openingTagOf(tag);
    const bool isClosed = isSelfClosing(tag);
    std::string_view attribute = "HREF";
    Units value = attributeOf(opening, attribute, tag.web);
    if (value.empty()) value = attributeOf(opening, attribute = "SRC", tag.web);
    if (value.empty() && isClosed) return;
    out.write(u"<");
    out.write(name);
    if (!value.empty()) {
        out.write(attribute == "HREF" ? Units(u" HREF=\"") : Units(u" SRC=\""));
        out.write(value);
        out.write(u"\"");
    }
    out.write(isClosed ? Units(u"/>") : Units(u">"));
    out.keep(tag.whole().substr(opening.size()));
}

/// The beginnings of the opening tags that begin a body.
class TagBeginnings {
public:
    explicit TagBeginnings(std::span<const String> tags) {
        for (const String& tag : tags)
            if (!tag.isEmpty()) beginnings_.push_back(tag);
    }

    bool areNone() const { return beginnings_.empty(); }

    bool match(Units tag) const {
        for (const Units beginning : beginnings_)
            if (tag.size() >= beginning.size() &&
                fastCaseInsensitiveCompareUnichars(tag.substr(0, beginning.size()), beginning) == 0)
                return true;
        return false;
    }

private:
    std::vector<Units> beginnings_;
};

/// Which body of those that are named the scan is in.
class BodyDepth {
public:
    bool isInside() const { return depth_ > 0; }

    void enter(const Tag& tag) {
        name_ = tag.name();
        depth_ = 1;
    }

    /// Counts a tag inside of a body.
    void count(const Tag& tag) {
        if (isWholeElement(tag) || !keyword::equalNoCase(tag.name(), name_)) return;
        if (tag.isClosing() || isSelfClosing(tag))
            --depth_;
        else
            ++depth_;
    }

private:
    Units name_;
    std::size_t depth_ = 0;
};

/// What a tag that stands outside of all bodies is: one that is not named, a single tag, a whole
/// element, or the begin of a body.
enum class Opening { None, Single, Whole, Body };

Opening openingOf(const Tag& tag, const TagBeginnings& beginnings) {
    if (tag.kind == TagKind::End || tag.isClosing() || !beginnings.match(tag.whole()))
        return Opening::None;
    if (isWholeElement(tag)) return Opening::Whole;
    return isSelfClosing(tag) ? Opening::Single : Opening::Body;
}

class StripTagBodiesHandler {
public:
    explicit StripTagBodiesHandler(const TagBeginnings& beginnings) : beginnings_(beginnings) {}

    bool operator()(const Tag& tag, PageRebuilder& out) {
        if (depth_.isInside()) {
            depth_.count(tag);
            return false;
        }
        out.keepText(tag);
        const Opening opening = openingOf(tag, beginnings_);
        if (opening == Opening::None || opening == Opening::Single) out.keepTag(tag);
        if (opening == Opening::Body) depth_.enter(tag);
        return false;
    }

private:
    const TagBeginnings& beginnings_;
    BodyDepth depth_;
};

class StripTagBodiesExceptHandler {
public:
    explicit StripTagBodiesExceptHandler(const TagBeginnings& beginnings)
        : beginnings_(beginnings) {}

    bool operator()(const Tag& tag, PageRebuilder& out) {
        if (depth_.isInside())
            keepInside(tag, out);
        else
            keepOutside(tag, out);
        return false;
    }

private:
    void keepInside(const Tag& tag, PageRebuilder& out) {
        out.keepAll(tag);
        depth_.count(tag);
        if (!depth_.isInside()) out.write(u"\n");
    }

    void keepOutside(const Tag& tag, PageRebuilder& out) {
        const Opening opening = openingOf(tag, beginnings_);
        if (opening != Opening::None) out.keepTag(tag);
        if (opening == Opening::Whole) out.write(u"\n");
        if (opening == Opening::Body) depth_.enter(tag);
    }

    const TagBeginnings& beginnings_;
    BodyDepth depth_;
};

/// Keeps the first element of a name.
class TagBodiesHandler {
public:
    TagBodiesHandler(std::string_view name, bool inner) : name_(name), inner_(inner) {}

    bool wasFound() const { return wasFound_; }

    bool operator()(const Tag& tag, PageRebuilder& out) {
        if (depth_ > 0) out.keepText(tag);
        if (!tag.isNamed(name_)) {
            if (depth_ > 0) out.keepTag(tag);
            return false;
        }
        return keepNamed(tag, out);
    }

private:
    bool keepNamed(const Tag& tag, PageRebuilder& out) {
        if (tag.isClosing() && depth_ == 0) return false;
        wasFound_ = true;
        if (hasOwnBody(tag) && depth_ == 0) return keepWhole(tag, out);
        if (!inner_) out.keepTag(tag);
        if (tag.isClosing()) return --depth_ == 0;
        if (!isSelfClosing(tag) && !hasOwnBody(tag)) ++depth_;
        return false;
    }

    bool keepWhole(const Tag& tag, PageRebuilder& out) const {
        const Units element = tag.whole();
        if (!inner_) {
            out.keep(element);
            return true;
        }
        const std::size_t start = openingTagOf(tag).size();
        out.keep(element.substr(start, std::max(start, element.rfind(u"</")) - start));
        return true;
    }

    const std::string_view name_;
    const bool inner_;
    std::size_t depth_ = 0;
    bool wasFound_ = false;
};

String bodyOf(const String& text, std::string_view name, bool inner, const WebRules& web) {
    if (name.empty()) return {};
    TagBodiesHandler handler(name, inner);
    String body = rebuiltPage(
        text, web, [&](const Tag& tag, PageRebuilder& out) { return handler(tag, out); });
    return handler.wasFound() ? body : String();
}

}  // namespace

String stripTags(const String& text, const WebRules& web) {
    return rebuiltPage(text, web, [](const Tag& tag, PageRebuilder& out) {
        if (!tag.hasText()) return false;
        if (!out.endsWhite()) out.write(u" ");
        out.keepText(tag);
        return false;
    });
}

String stripTag(const String& text, std::string_view name, const WebRules& web) {
    if (name.empty()) return text;
    return rebuiltPage(text, web, [name](const Tag& tag, PageRebuilder& out) {
        out.keepText(tag);
        if (!tag.isNamed(name)) out.keepTag(tag);
        return false;
    });
}

String stripAttributesOfTag(const String& text, std::string_view name, const WebRules& web) {
    if (name.empty()) return text;
    const std::u16string written = widened(name);
    return rebuiltPage(text, web, [&](const Tag& tag, PageRebuilder& out) {
        out.keepText(tag);
        if (tag.isNamed(name))
            writeBareTag(tag, written, out);
        else
            out.keepTag(tag);
        return false;
    });
}

String stripTagBodies(const String& text, std::span<const String> tags, TagBodyOptions options) {
    const TagBeginnings beginnings(tags);
    if (text.isEmpty() || beginnings.areNone()) return options.except ? String() : text;
    return absentIfEmpty(
        options.except ? rebuiltPage(text, options.web, StripTagBodiesExceptHandler(beginnings))
                       : rebuiltPage(text, options.web, StripTagBodiesHandler(beginnings)));
}

String innerTagBody(const String& text, std::string_view name, const WebRules& web) {
    return bodyOf(text, name, true, web);
}
String outerTagBody(const String& text, std::string_view name, const WebRules& web) {
    return bodyOf(text, name, false, web);
}

namespace {

String valueOf(const std::map<String, String>& element, const String& key) {
    const auto entry = element.find(key);
    return entry == element.end() ? String() : entry->second;
}

}  // namespace

String xmlTag(const std::map<String, String>& element) { return valueOf(element, u"Tag"); }

String xmlContent(const std::map<String, String>& element) {
    String content = valueOf(element, u"Content");
    return content.isAbsent() ? String::empty() : content;
}

}  // namespace velmo
