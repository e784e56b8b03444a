#include <velmocore/url/FileKinds.h>

#include <set>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(FileKinds, ListsAndTestsAgree) {
    const struct {
        const std::vector<String>& list;
        bool (*isOf)(std::u16string_view);
    } cases[] = {{imageTypes(), isImageType},           {markupTypes(), isMarkupType},
                 {richTextTypes(), isRichTextType},     {executableTypes(), isExecutableType},
                 {multimediaTypes(), isMultimediaType}, {archiveTypes(), isArchiveType},
                 {officeTypes(), isOfficeType},         {binaryFileTypes(), isBinaryFileType}};
    for (const auto& c : cases) {
        EXPECT_FALSE(c.list.empty());
        for (const String& extension : c.list) EXPECT_TRUE(c.isOf(extension)) << extension;
        const std::set<String> members(c.list.begin(), c.list.end());
        for (const String& other : binaryFileTypes()) EXPECT_EQ(c.isOf(other), members.contains(other)) << other;
        for (const auto* none : {u"", u"x", u"torren", u"torrents", u"html"})
            EXPECT_FALSE(c.isOf(none)) << String(none);
        EXPECT_FALSE(c.isOf({}));
    }
    EXPECT_TRUE(isMultimediaType(u"MP3") && isArchiveType(u"SparseImage") && isImageType(u"Jpg"));
    EXPECT_EQ(officeTypesIncluding({false, false, false, false, false, false}).size(), 11u);
    EXPECT_EQ(officeTypesIncluding({.PDF = false}).size(), 27u);
    EXPECT_EQ(binaryFileTypesIncluding({.richText = false, .programs = {.MSWord = false}}).size(), 173u - 9u);
}

TEST(FileKinds, MultimediaByHowItPlays) {
    const std::tuple<const char16_t*, bool, bool, bool> cases[] = {
        {u"MP3", true, false, false},     {u"swf", false, false, true},  {u"mpe", false, true, false},
        {u"movie", false, true, false},   {u"midi", true, false, false}, {u"dv", false, false, false},
        {u"movies", false, false, false}, {u"x", false, false, false},   {nullptr, false, false, false}};
    for (const auto& [given, audio, video, embedded] : cases) {
        const String extension(given);
        EXPECT_EQ(isMultimediaType(extension, {.audio = true}), audio) << extension;
        EXPECT_EQ(isMultimediaType(extension, {.video = true}), video) << extension;
        EXPECT_EQ(isMultimediaType(extension, {.embedded = true}), embedded) << extension;
        EXPECT_FALSE(isMultimediaType(extension, MultimediaKinds{}));
    }
}

}  // namespace
}  // namespace velmo
