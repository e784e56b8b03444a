// Comments with which a site keeps parts of its pages out of an index. Each names the uses that it
// switches, as in "googleoff: index".
#pragma once

#include <velmocore/markup/TagScanner.h>

#include "text/Keyword.h"

namespace velmo::detail {

/// Which uses are allowed at a place of a page: all, at its start.
class GoogleMask {
public:
    enum Use : unsigned { Index = 1, Snippet = 2, Anchor = 4 };

    bool allows(Use use) const { return (bits_ & use) != 0; }

    /// Takes notice of a comment; most have nothing to say.
    void note(const Tag& tag) { note(tag.whole()); }
    void note(std::u16string_view comment) {
        if (comment.size() < ShortestComment) return;
        const bool on = keyword::contains(comment, "GOOGLEON:");
        if (!on && !keyword::contains(comment, "GOOGLEOFF:")) return;
        unsigned bits = 0;
        if (keyword::contains(comment, "INDEX")) bits |= Index;
        if (keyword::contains(comment, "SNIPPET")) bits |= Snippet;
        if (keyword::contains(comment, "ANCHOR")) bits |= Anchor;
        if (keyword::contains(comment, "ALL")) bits = AllBits;
        bits_ = on ? bits_ | bits : bits_ & ~bits;
    }

private:
    static constexpr std::size_t ShortestComment = 19;
    static constexpr unsigned AllBits = Index | Snippet | Anchor;

    unsigned bits_ = AllBits;
};

}  // namespace velmo::detail
