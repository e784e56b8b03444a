#include <velmocore/storage/KeyedFiles.h>

#include <list>
#include <set>

#include <velmocore/storage/KeyedDataEditing.h>

#include "StoreFixture.h"

namespace velmo {
namespace {

class KeyedFiles : public test::StoreTest {};

TEST_F(KeyedFiles, ListsOfStringsComeBack) {
    Strings strings;
    for (int i = 0; i < 60000; ++i)
        strings.push_back(u"string \u00E9 " + test::repeated(u"x", static_cast<std::size_t>(i % 40)));
    const std::string path = at("deep/folder") + "/list";
    EXPECT_TRUE(writeKeyedStringsToFile(strings, path, true));
    Strings read{u"old"};
    EXPECT_TRUE(readKeyedStringsFromFile(read, path));
    EXPECT_EQ(read, strings);
    EXPECT_TRUE(isValidKeyedData(test::dataOf(test::readFile(path))));
    EXPECT_TRUE(writeKeyedStringsToFile(std::list<String>{u"a", u"", u"\xD800", u"b", u"a"}, path));
    std::set<String> unique;
    EXPECT_TRUE(readKeyedStringsFromFile(unique, path));
    EXPECT_EQ(unique, (std::set<String>{u"a", u"b"}));
    EXPECT_EQ(test::readFile(path).size(), 51u);
    EXPECT_FALSE(readKeyedStringsFromFile(unique, at("none")));
    EXPECT_TRUE(unique.empty());
    EXPECT_FALSE(writeKeyedStringsToFile(strings, folder_) || writeKeyedStringsToFile(strings, Path()));
    EXPECT_FALSE(writeKeyedStringsToFile(strings, path + "/below a file"));
    EXPECT_FALSE(writeKeyedStringsToFile(strings, "/dev/full"));
}

TEST_F(KeyedFiles, LoadInThreeWays) {
    Data data;
    addString(data, u"text", 7);
    write("k", charsOf(data));
    write("empty", "");
    EXPECT_EQ(dataWithKeyedFile(at("k")), data);
    EXPECT_EQ(dataWithUncachedKeyedFile(at("k")), data);
    const auto mapped = dataWithMappedKeyedFile(at("k"));
    ASSERT_TRUE(mapped);
    EXPECT_EQ(stringForKey(*mapped, 7), u"text");
    EXPECT_TRUE(dataWithMappedKeyedFile(at("empty"))->bytes().empty());
    EXPECT_EQ(dataWithMappedKeyedFile("/proc/self/comm")->bytes().empty(), false);
    EXPECT_FALSE(dataWithKeyedFile(at("none")) || dataWithUncachedKeyedFile(Path()) ||
                 dataWithMappedKeyedFile(folder_));
}

}  // namespace
}  // namespace velmo
