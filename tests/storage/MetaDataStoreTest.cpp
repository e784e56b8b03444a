#include <velmocore/storage/MetaDataStore.h>

#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include <velmocore/platform/Log.h>
#include <velmocore/platform/UserDefaults.h>

#include "TestSupport.h"
#include "storage/FileAttributes.h"

namespace velmo {
namespace {

using Store = VWMetaDataStore;
using Dictionary = PropertyListDictionary;
using Array = PropertyListArray;

/// A file where there are attributes, if there is such a place.
class MetaDataStoreTest : public testing::Test {
protected:
    void SetUp() override {
        for (const std::string& place :
             {std::filesystem::temp_directory_path().string(), std::string("."), std::string("/dev/shm")}) {
            file_ = place + "/velmo-attributes-" + std::to_string(getpid());
            std::ofstream(file_) << "text";
            if (Store::setWhereFrom(u"probe", file_) && Store::setWhereFrom(u"", file_)) return;
            std::filesystem::remove(file_);
        }
        GTEST_SKIP() << "no file system here has attributes";
    }
    void TearDown() override {
        setLogHandler(nullptr);
        std::filesystem::remove(file_);
    }
    PropertyList stored(const String& key) const { return Store::objectForKey(key, file_, {}, &error_); }

    std::filesystem::path file_;
    mutable Error error_;
};

std::string logged;
void keepLog(std::string_view line) { logged = line; }

Data dataOf(std::string_view text) { return {text.begin(), text.end()}; }

TEST_F(MetaDataStoreTest, KeepsValues) {
    const PropertyList list{Array{{String(u"a")}, {true}, {Dictionary{{u"k", {std::int64_t{5}}}}}}};
    const Data binary = dataFromPropertyList(list, PropertyListFormat::Binary).value();
    const std::pair<PropertyList, PropertyList> cases[] = {
        {{String(u"")}, {String(u"")}},
        {list, list},
        {{binary}, list},                          // told by its looks
        {{dataOf("bplist")}, {dataOf("bplist")}},  // which may deceive
        {{dataOf("\xFFraw")}, {dataOf("\xFFraw")}},
        {{Data()}, {}}};
    for (const auto& [set, got] : cases) {
        EXPECT_TRUE(Store::setObject(set, u"key \u00E9", file_, {}, &error_));
        EXPECT_EQ(stored(u"key \u00E9"), got);
        EXPECT_TRUE(error_.text.isAbsent());
        EXPECT_EQ(Store::metaDataKeysAtPath(file_), std::set<String>{u"key \u00E9"});
        EXPECT_EQ(Store::metaDataDictionaryAtPath(file_).has_value(), !got.as<std::monostate>());
    }
    EXPECT_TRUE(Store::removeObjectForKey(u"key \u00E9", file_) && !Store::metaDataKeysAtPath(file_, {}, &error_));
    EXPECT_TRUE(error_.text.isAbsent());
}

TEST_F(MetaDataStoreTest, RefusesWithTheReason) {
    const std::u16string tooLong(128, u'y');
    EXPECT_TRUE(Store::setObject({true}, tooLong.substr(1), file_, {}, &error_)) << error_;
    EXPECT_FALSE(Store::removeObjectForKey(tooLong, file_) || Store::setObject({true}, tooLong, file_, {}, &error_));
    EXPECT_EQ(printed(error_), "com.velmo-works.errordomain.MetaData 200: The metadata key `" + utf8(tooLong) +
                                   "' is too long to be used.");
    EXPECT_FALSE(Store::setObject({}, u"k", file_, {}, &error_));
    EXPECT_EQ(std::tuple(error_.code, error_.reason), std::tuple(203, u"k"));
    EXPECT_FALSE(
        Store::setMetaDataDictionary({{u"a", {true}}, {u"b", {}}, {u"c", {}}, {u"d", {true}}}, file_, {}, &error_));
    EXPECT_EQ(std::tuple(error_.code, error_.reason), std::tuple(202, u"b, c"));
    EXPECT_EQ(stored(u"d"), PropertyList{true});
    setLogHandler(keepLog);
    EXPECT_FALSE(Store::setObject({true}, String(u"\xD800"), file_, {}, &error_));
    EXPECT_EQ(logged, "getFileSystemRepresentation '\xEF\xBF\xBD':\n" + file_.string() + "\nInvalid argument");
    // Names are seen by all, values only by those who may read the file.
    std::filesystem::permissions(file_, std::filesystem::perms::none);
    const bool isRoot = ::geteuid() == 0 && ::seteuid(65534) == 0;
    EXPECT_FALSE(Store::metaDataDictionaryAtPath(file_, {}, &error_));
    EXPECT_EQ(isRoot ? ::seteuid(0) : 0, 0);
    EXPECT_EQ(std::tuple(error_.code, error_.reason),
              std::tuple(201, u"Permission denied, Permission denied, Permission denied"));
}

/// The numbers of the system for reading an attribute and for writing it.
std::pair<int, int> numbersOf(const Path& path, bool traverseLink) {
    Error reading, writing;
    std::ignore = Store::objectForKey(u"k", path, {traverseLink}, &reading);
    EXPECT_EQ(reading.path, reading.code ? path.string() : String());
    const bool isSet = Store::setObject({true}, u"k", path, {traverseLink}, &writing);
    EXPECT_EQ(isSet, writing.code == 0);
    return {reading.code, writing.code};
}

TEST(MetaData, ReportsWhatTheSystemSays) {
    EXPECT_EQ(numbersOf("/proc/self/none", true), std::pair(ENOENT, ENOENT));
    EXPECT_EQ(numbersOf("/proc/self/comm", true), std::pair(EOPNOTSUPP, EOPNOTSUPP));
    EXPECT_EQ(numbersOf({}, true), std::pair(EINVAL, EINVAL));
}

TEST_F(MetaDataStoreTest, FollowsLinksOrNot) {
    const std::filesystem::path link = file_.string() + "-link";
    std::filesystem::create_symlink(file_, link);
    EXPECT_EQ(numbersOf(link, false), std::pair(ENODATA, EPERM));
    EXPECT_EQ(numbersOf(link, true), std::pair(ENODATA, 0));
    EXPECT_EQ(numbersOf(file_, true), std::pair(0, 0));
    std::filesystem::remove(link);
}

TEST_F(MetaDataStoreTest, KnowsTagsSourcesAndComments) {
    EXPECT_FALSE(Store::getFinderTags(file_, &error_));
    EXPECT_TRUE(error_.text.isAbsent());
    Store::setObject({Array{{String(u"Red\n6")}, {String(u"Old\n2")}}}, UserTagsKey, file_);
    EXPECT_EQ(Store::getFinderTags(file_), (Strings{u"Red", u"Old"}));
    EXPECT_TRUE(Store::setFinderTags(Strings{u"New", u"Red"}, file_));
    EXPECT_EQ(stored(UserTagsKey), (PropertyList{Array{{String(u"New")}, {String(u"Red\n6")}}}));
    setUserDefaultsHook([](View key) { return key == u"DisableFinderTags" ? Strings{u"YES"} : Strings(); });
    EXPECT_FALSE(Store::setFinderTags({}, file_, &error_));
    setUserDefaultsHook(nullptr);
    EXPECT_TRUE(Store::setFinderTags({}, file_) && Store::setFinderTags({}, file_));

    EXPECT_TRUE(Store::setWhereFrom(u"http://h/", file_) && Store::setIsEditableNote(true, file_));
    Store::setObject({String(u"comment")}, FinderCommentKey, file_);
    const Dictionary all = Store::metaDataDictionaryAtPath(file_).value();
    EXPECT_EQ(getWhereFrom(all), u"http://h/");
    EXPECT_EQ(getFinderComment(all), Store::finderCommentAtPath(file_));
    EXPECT_EQ(all.at(EditableNoteKey), PropertyList{String(u"yes")});
    EXPECT_TRUE(isEditableNote(all) && Store::setIsEditableNote(false, file_) && Store::setWhereFrom(u"", file_));
    EXPECT_EQ(Store::metaDataKeysAtPath(file_)->size(), 1u);
}

TEST(MetaData, ReadsDictionaries) {
    const std::pair<Dictionary, String> sources[] = {
        {{{WhereFromsKey, {String(u"b")}}, {ItemWhereFromsKey, {Array{{String(u"a")}, {String(u"c")}}}}}, u"a"},
        {{{WhereFromsKey, {Array{}}}}, {}},
        {{{WhereFromsKey, {Array{{dataOf("caf\xC3\xA9")}}}}}, u"caf\u00E9"},
        {{{WhereFromsKey, {Data{'a', 0, 'b', 0}}}}, u"a"},
        {{{WhereFromsKey, {Data{'a', 0, 'b'}}}}, View(u"a\0b", 3)},
        {{{WhereFromsKey, {dataOf("\xFF")}}}, {}},
        {{{WhereFromsKey, {Data()}}}, {}},
        {{{WhereFromsKey, {String(u"data:,x")}}}, {}},
    };
    for (const auto& [dictionary, source] : sources) EXPECT_EQ(getWhereFrom(dictionary), source);
    setLogHandler(keepLog);
    EXPECT_FALSE(validatedTags({}));
    EXPECT_FALSE(getFinderTags(Dictionary{{UserTagsKey, {String(u"x")}}}));
    EXPECT_EQ(logged, "Invalid array: string");
    setLogHandler(nullptr);
    const Dictionary titled = {{ItemTitleKey, {String(u"Title.TXT")}}};
    EXPECT_EQ(getItemTitleForFile(titled, u"/a/other.txt"), u"Title.TXT");
    EXPECT_TRUE(getItemTitleForFile(titled, u"/a/title.txt").isAbsent() && getItemTitleForFile({}, u"/a").isAbsent());
    EXPECT_EQ(detail::keysOfAttributeNames(std::string("user.a\0security.x\0user.\xFF\0user.b", 31)),
              (std::set<String>{u"a", u"b"}));
}

// A value that another program changes between the questions for its size and for its bytes.
TEST(MetaData, AsksAgainForWhatGrows) {
    for (const int grows : {0, 1, 5, 1000}) {
        int asked = 0;
        const auto data = detail::readOfUnknownSize([&](std::uint8_t* bytes, std::size_t count) -> ssize_t {
            const int size = 3 + std::min(bytes ? ++asked : asked, grows);
            return bytes && count < static_cast<std::size_t>(size) ? (errno = ERANGE, -1) : size;
        });
        EXPECT_EQ(data.value_or(Data()).size(), grows < 1000 ? 3u + grows : 0u);
        EXPECT_LT(asked, 100);
    }
}

}  // namespace
}  // namespace velmo
