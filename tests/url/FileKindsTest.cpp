#include <velmocore/url/FileKinds.h>

#include <algorithm>
#include <set>
#include <vector>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(FileKinds, ListsStandInOrder) {
    const struct {
        const std::vector<String>& list;
        std::size_t count;
        const char16_t *first, *last;
        bool (*isOf)(std::u16string_view);
    } cases[] = {
        {imageTypes(), 22, u"jpeg", u"mjpg", isImageType},
        {markupTypes(), 24, u"sgm", u"ditaval", isMarkupType},
        {richTextTypes(), 2, u"rtf", u"rtfd", isRichTextType},
        {executableTypes(), 2, u"class", u"exe", isExecutableType},
        {multimediaTypes(), 91, u"ra", u"movie", isMultimediaType},
        {archiveTypes(), 27, u"gz", u"sparseimage", isArchiveType},
        {officeTypes(), 28, u"xls", u"ai", isOfficeType},
        {binaryFileTypes(), 22 + 91 + 27 + 2 + 28 + 2 + 1, u"jpeg", u"dat", isBinaryFileType},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.list.size(), c.count);
        EXPECT_EQ(c.list.front(), c.first);
        EXPECT_EQ(c.list.back(), c.last);
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
    const struct {
        const char16_t* extension;
        bool audio, video, embedded;
    } cases[] = {
        {u"MP3", true, false, false},     {u"swf", false, false, true},  {u"mpe", false, true, false},
        {u"movie", false, true, false},   {u"midi", true, false, false}, {u"dv", false, false, false},
        {u"movies", false, false, false}, {u"x", false, false, false},   {nullptr, false, false, false},
    };
    for (const auto& c : cases) {
        const String extension(c.extension);
        EXPECT_EQ(isMultimediaType(extension, {.audio = true}), c.audio) << extension;
        EXPECT_EQ(isMultimediaType(extension, {.video = true}), c.video) << extension;
        EXPECT_EQ(isMultimediaType(extension, {.embedded = true}), c.embedded) << extension;
        EXPECT_FALSE(isMultimediaType(extension, MultimediaKinds{}));
    }
}

}  // namespace
}  // namespace velmo
