#include <velmocore/text/StringCreation.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(StringCreation, Components) {
    EXPECT_EQ(stringWithComponents({u"a", u"b", u"c"}), u"a.b.c");
    EXPECT_EQ(stringWithComponents({u"a"}), u"a");
    EXPECT_EQ(stringWithComponents({u"", u""}), u".");
    EXPECT_EQ(stringWithComponents({u"a", String(), u"c"}), u"a");
    EXPECT_TRUE(stringWithComponents({String(), u"b"}).isAbsent());
    EXPECT_TRUE(stringWithComponents(Strings()).isAbsent());
}

TEST(StringCreation, UnitsAndEnds) {
    EXPECT_EQ(stringWithCharacter(u'\0').length(), 1u);
    EXPECT_EQ(firstCharacter(u"ab"), u'a');
    EXPECT_EQ(lastCharacter(u"ab"), u'b');
    EXPECT_EQ(firstCharacter(String()) + lastCharacter(u""), 0);
    EXPECT_TRUE(isStringEmpty(String()) && !isStringNotEmpty(u"") && isStringNotEmpty(u" "));
}

}  // namespace
}  // namespace velmo
