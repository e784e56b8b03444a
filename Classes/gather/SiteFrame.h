// What all pages of the site have around them: head, search field, foot, and the language of
// queries.
#pragma once

#include <string>
#include <string_view>

#include "gather/MarkupWriter.h"
#include "gather/SiteTarget.h"

namespace velmo::detail {

/// Up to the content. The title is foreign text; the target is what is asked, for the search field.
void beginSitePage(MarkupWriter& out, std::u16string_view title, const SiteTarget& target);
void endSitePage(MarkupWriter& out);

/// How queries are written, to be unfolded.
void writeQueryHelp(MarkupWriter& out, bool isOpen);

/// A page that only says why there is none.
std::string sitePageOfStatus(int status, std::u16string_view reason);

/// The one style sheet, and the picture beside the title.
std::string_view siteStyleSheet();
std::string_view siteIcon();

}  // namespace velmo::detail
