// The frame of every operation that makes a page of a page: each tag is shown to a rule, which
// keeps spans of the page or writes something of its own in their place. Spans that stand side by
// side are copied in one piece, and a page of which all is kept is not copied at all.
#pragma once

#include <string_view>

#include <velmocore/markup/TagScanner.h>
#include <velmocore/platform/String.h>

#include "text/WhiteRuns.h"

namespace velmo::detail {

class PageRebuilder {
    using Units = std::u16string_view;

public:
    /// The page must outlive it.
    explicit PageRebuilder(const String& page) : page_(page) {}

    // Spans of the page, in their order.

    void keep(Units span) {
        if (span.empty()) return;
        if (run_.data() + run_.size() != span.data()) {
            copyRun();
            run_ = {span.data(), 0};
        }
        run_ = {run_.data(), run_.size() + span.size()};
    }
    void keepText(const Tag& tag) { keep(tag.text()); }
    void keepTag(const Tag& tag) { keep(tag.whole()); }
    void keepAll(const Tag& tag) {
        keepText(tag);
        keepTag(tag);
    }

    /// Units that are not the page's.
    void write(Units units) {
        copyRun();
        out_.append(units);
    }

    /// Whether what there is so far ends in white space. Nothing does not.
    bool endsWhite() const {
        if (!run_.empty()) return isWhite(run_.back());
        return !out_.isEmpty() && isWhite(out_.back());
    }

    /// The page itself if all of it was kept.
    String finish() {
        if (out_.isEmpty() && run_.size() == page_.length()) return page_;
        copyRun();
        return out_.finish();
    }

private:
    bool isWhite(char16_t unit) const { return isWhiteUnit(unit, white_); }

    void copyRun() {
        out_.append(run_);
        run_ = {};
    }

    const String& page_;
    Units run_;  ///< kept and not yet copied
    StringBuilder out_;
    const CharacterSetRep& white_ = whiteCharacterSetRep();
};

/// The page as the rule makes it; an absent or empty one as it is. The rule is called for each
/// tag as the handler of a scan is, with the rebuilder beside the tag.
template <class Rule>
String rebuiltPage(const String& page, const WebRules& web, Rule rule) {
    if (page.isEmpty()) return page;
    PageRebuilder out(page);
    GetTagsOfString(
        page, [&](const Tag& tag) { return rule(tag, out); }, web);
    return out.finish();
}

}  // namespace velmo::detail
