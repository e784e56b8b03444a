#include <velmocore/markup/EditableNotes.h>

#include "TestSupport.h"

namespace velmo {
namespace {

constexpr View Charset = u"<meta http-equiv=\"content-type\" content=\"text/html; charset=utf-8\">\n";
constexpr View Mark = u"<meta name=\"VW:isEditableNote\" content=\"Yes\"/>\n";

TEST(EditableNotes, OfPages) {
    const std::u16string both = std::u16string(Charset) + std::u16string(Mark);
    const std::tuple<String, String> cases[] = {
        {u" <html> \r\n\r\n<head>\n<title>a</title></head>\n\t<p>b </p>",
         u"<html>\n<head>" + both + u"\n<title>a</title></head>\n<p>b </p>\n"},
        {u"<head><meta charset=koi8-r></head><head>",
         u"<head>" + std::u16string(Mark) + u"<meta charset=koi8-r></head><head>\n"},
        {u"<head><meta name='vw:iseditablenote' content=No>\n\n<p>",
         u"<head><meta name='vw:iseditablenote' content=No>\n<p>\n"},
        {u"<p>a<button>b</button><select><option>c</select><img src=d alt=e><script>f</script><!-- g -->",
         u"<p>a<img src=d alt=e>\n"},
        {u"<p>a", u"<p>a\n"},
        {u"<select>", u""},
        {u" \n ", u""},
        {u"", u""},
        {String(), String()}};
    for (const auto& [page, note] : cases) EXPECT_EQ(formattedNote(page), note) << page;
    EXPECT_FALSE(isFormattedNote(formattedNote(u"<p>a")));
    const String note = formattedNote(u"<head>\n</head>a");
    EXPECT_TRUE(isFormattedNote(note));
    EXPECT_EQ(formattedNote(note), u"<head>" + both + u"</head>a\n");
}

}  // namespace
}  // namespace velmo
