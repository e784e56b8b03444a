// What rendered feeds are written with. Each %@ is a place for a text, in the order in which they
// are named beside the template.
#pragma once

#include <initializer_list>
#include <string_view>

#include <velmocore/platform/String.h>

namespace velmo::detail::feedTemplates {

using Template = std::u16string_view;

inline constexpr Template Head =
    u"<html>\n<head>\n<meta http-equiv=\"Content-Type\" content=\"text/html; charset=utf-8\"/>\n";
/// URL
inline constexpr Template LinkedSheet =
    u"<link rel=\"stylesheet\" type=\"text/css\" href=\"%@\"/>\n";
/// sheet
inline constexpr Template InlineSheet = u"<style type=\"text/css\"><!--%@--></style>\n";
/// title, title
inline constexpr Template FeedHeader =
    u"<title>%@</title>\n</head>\n<body><div class=\"page_header\"><div "
    u"class=\"page_title\"><nobr>%@</nobr></div></div>\n";
inline constexpr Template HeadEnd = u"</head>\n<body>\n";
inline constexpr Template PageEnd = u"\n</body>\n</html>";
inline constexpr Template PageEndWithoutBody = u"\n</head>\n</html>";
/// author
inline constexpr Template AuthorTag = u"<meta name=\"author\" content=\"%@\"/>\n";
/// tags, with ", " between
inline constexpr Template KeywordsTag = u"<meta name=\"keywords\" content=\"%@\"/>\n";

inline constexpr Template ItemStart = u"\n<div class=\"feed_header\">";
/// icon
inline constexpr Template IconStart =
    u"<table><tr><td valign=\"centered\"><img src=\"%@\"/></td><td valign=\"centered\">";
/// link, title, byline
inline constexpr Template LinkedTitleWithByline =
    u"<a class=\"feed_link\" href=\"%@\">%@</a><br/><font class=\"feed_date\">%@</font>";
/// link, title
inline constexpr Template LinkedTitle = u"<a class=\"feed_link\" href=\"%@\">%@</a><br/>";
/// title, byline
inline constexpr Template TitleWithByline = u"%@<br/><font class=\"feed_date\">%@</font>";
/// title
inline constexpr Template Title = u"%@<br/>";
/// author, date
inline constexpr Template Byline = u"%@ - %@";
/// The row of the table stays open, as readers of such pages know it.
inline constexpr Template IconEnd = u"</td></table></div>";
inline constexpr Template HeaderEnd = u"</div>";
/// body
inline constexpr Template Article = u"<div class=\"feed_article\">\n%@\n";

inline constexpr Template EnclosuresStart = u"<div class=\"feed_enclosures\"><p>\n";
/// URL, name, length
inline constexpr Template EnclosureWithLength =
    u"<a class=\"feed_enclosure\" href=\"%@\">%@</a>&nbsp;(%@)<br/>\n";
/// URL, name, length
inline constexpr Template EnclosureWithBytes =
    u"<a class=\"feed_enclosure\" href=\"%@\">%@</a>&nbsp;(%@ bytes)<br/>\n";
/// URL, name
inline constexpr Template Enclosure = u"<a class=\"feed_enclosure\" href=\"%@\">%@</a><br/>\n";
inline constexpr Template EnclosuresEnd = u"</p></div>\n</div>\n";
inline constexpr Template ArticleEnd = u"</div>\n";

/// Appends a template with its texts.
inline void append(StringBuilder& out, Template text,
                   std::initializer_list<std::u16string_view> values = {}) {
    for (const std::u16string_view value : values) {
        const std::size_t place = text.find(u"%@");
        out.append(text.substr(0, place));
        out.append(value);
        text.remove_prefix(place + 2);
    }
    out.append(text);
}

}  // namespace velmo::detail::feedTemplates
