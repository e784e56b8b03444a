#include <velmocore/text/Dumping.h>

#include <velmocore/platform/Log.h>

#include "TestSupport.h"

namespace velmo {
namespace {

std::string logged;

TEST(Dumping, RowsAndArrays) {
    const auto dumped = [](void (*operation)(View), View text) {
        logged.clear();
        setLogHandler([](std::string_view line) { logged += line; });
        operation(text);
        setLogHandler(nullptr);
        return logged;
    };
    EXPECT_EQ(dumped(dump, u""), "");
    EXPECT_EQ(dumped(dump, u"a\u20AC"), "a\xE2\x82\xAC          : 0061 20ac \n");
    EXPECT_EQ(dumped(dump, u"abcdefghijklm"),
              "\nabcdefghijkl: 0061 0062 0063 0064 0065 0066 0067 0068 0069 006a 006b 006c \n"
              "m           : 006d \n\n");
    EXPECT_EQ(dumped(dumpAsArray, u"a"), "\na:\nunichar string[] = {\n\t0x0061\n};\n ");
    EXPECT_EQ(dumped(dumpAsArray, u"abcdefghi"),
              "\nabcdefghi:\nunichar string[] = {\n\t0x0061, 0x0062, 0x0063, 0x0064, 0x0065, "
              "0x0066, 0x0067, 0x0068,\n\t0x0069\n};\n ");
}

}  // namespace
}  // namespace velmo
