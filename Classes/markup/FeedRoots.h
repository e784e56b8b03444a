// Which tags decide whether a text is a feed.
#pragma once

#include <velmocore/markup/FeedRecognition.h>
#include <velmocore/markup/TagPredicates.h>
#include <velmocore/markup/TagScanner.h>

namespace velmo::detail {

/// The dialect of which the tag is the root; None if it is none.
inline FeedDialect dialectOfRoot(const Tag& tag) {
    switch (tag.nameLength) {
        case 3:
            return tag.isNamed("RSS") ? FeedDialect::RSS : FeedDialect::None;
        case 4:
            return tag.isNamed("FEED") ? FeedDialect::Atom : FeedDialect::None;
        case 7:
            return tag.isNamed("RDF:RDF") ? FeedDialect::RDF : FeedDialect::None;
        default:
            return FeedDialect::None;
    }
}

/// Whether a tag belongs to a page, which a feed's are not.
inline bool isPageRoot(const Tag& tag) {
    return tag.nameLength == 4 &&
           (tag.isNamed("HTML") || tag.isNamed("HEAD") || tag.isNamed("BODY"));
}

/// Takes the tags of a text one after the other and keeps what they tell.
class FeedRecognition {
public:
    /// True if no tag behind this one can change the answer any more.
    bool note(const Tag& tag) {
        if (isPageRoot(tag)) return true;
        const FeedDialect dialect = dialectOfRoot(tag);
        if (dialect == FeedDialect::None) return false;
        if (!found_.isFeed) found_.dialect = dialect;
        found_.isFeed = true;
        found_.isComplete = isTagClosed(tag.whole());
        return found_.isComplete;
    }
    const FeedCompleteness& found() const { return found_; }

private:
    FeedCompleteness found_;
};

}  // namespace velmo::detail
