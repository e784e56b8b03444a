// Tags scanned in bytes are those of the decoded page, whatever the bytes are.
#include "markup/ByteTag.h"
#include "platform/Machine.h"

#include <filesystem>
#include <random>

#include "TestSupport.h"
#include "markup/MarkIndex.h"
#include "markup/MarkKernels.h"
#include "markup/TagName.h"
#include "markup/TagScan.h"

namespace velmo {
namespace {

using detail::ByteTag;

String widened(std::string_view bytes) { return String::fromUTF8(bytes); }

/// What a handler is told of a tag, in units.
struct Told {
    TagKind kind;
    String name, text, whole;
    std::size_t nameLength, location;
    bool hasText, isClosing, isScript, isSpan;
    detail::PackedName packed;

    bool operator==(const Told&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Told& told) {
    return out << static_cast<int>(told.kind) << " [" << told.name << "] " << told.location << " [" << told.whole
               << "] text [" << told.text << "] " << told.nameLength << told.hasText << told.isClosing << told.isScript
               << told.isSpan << " " << told.packed;
}

String unitsOf(std::u16string_view units) { return units.empty() ? String::empty() : String(units); }
String unitsOf(std::string_view bytes) { return widened(bytes); }
std::size_t locationOf(const Tag& tag) { return tag.tagLocation; }
std::size_t locationOf(const ByteTag& tag) { return widened(tag.characters.substr(0, tag.tagLocation)).length(); }

template <class AnyTag>
Told told(const AnyTag& tag, bool wantsLocation) {
    return {tag.kind,
            unitsOf(tag.name()),
            unitsOf(tag.text()),
            unitsOf(tag.whole()),
            detail::lengthOfName(tag),
            wantsLocation ? locationOf(tag) : 0,
            tag.hasText(),
            tag.isClosing(),
            tag.isNamed("SCRIPT"),
            tag.isNamed("span"),
            detail::packedName(tag)};
}

template <class AnyTag, class Text>
std::vector<Told> toldOf(Text text, const WebRules& web, detail::Markup markup, bool wantsLocations) {
    std::vector<Told> all;
    const auto handler = [&](const AnyTag& tag) { return all.push_back(told(tag, wantsLocations)), false; };
    detail::scanTags(text, handler, web, markup);
    return all;
}

void expectSameTags(const std::string& bytes) {
    const String page = widened(bytes);
    const bool isShort = bytes.size() < 500;
    for (const WebRules& web : {WebRules(), WebRules::today(), WebRules{.tagBounds = true}}) {
        for (const detail::Markup markup : {detail::Markup::Page, detail::Markup::Feed}) {
            const auto ofUnits = toldOf<Tag>(page.view(), web, markup, isShort);
            const auto ofBytes = toldOf<ByteTag>(std::string_view(bytes), web, markup, isShort);
            ASSERT_EQ(ofUnits.size(), ofBytes.size()) << bytes;
            for (std::size_t i = 0; i < ofUnits.size(); ++i) ASSERT_EQ(ofUnits[i], ofBytes[i]) << bytes;
        }
    }
}

/// One of the pieces of which hostile pages are made.
std::string_view pieceOf(std::mt19937& random) {
    static constexpr std::string_view Pieces[] = {
        "<",
        ">",
        "</",
        "/>",
        "=",
        "\"",
        "'",
        "<!--",
        "-->",
        "--!>",
        "<!-",
        "->",
        "<![",
        "]>",
        "]]>",
        "<![CDATA[",
        "<!DOCTYPE html",
        "<?xml",
        "script",
        "</script",
        "<script>",
        "<STYLE a=b>",
        "</style>",
        "textarea",
        "<title>",
        "</title",
        "<svg>",
        "</svg>",
        "<math",
        "<desc>",
        "<p",
        "<br/>",
        " ",
        "\t",
        "\n",
        "\x03",
        "a",
        "x=1",
        "href=",
        // The letters that fold to ASCII, in names and in the ends of scripts.
        "<\xC5\xBF"
        "cript>",
        "</\xC5\xBF"
        "cr\xC4\xB1pt",
        "scr\xC4\xB1pt",
        "<\xC5\xBFpan",
        "<\xC5\xBFtyle>",
        "<t\xC4\xB1tle>",
        "</T\xC4\xB1TLE>",
        "<\xC4\xB1mg",
        "<xmp>",
        "</xmp>",
        "<pla\xC4\xB1ntext>",
        "<\xC5\xBFvg>",
        // White space and letters outside ASCII; broken, overlong and cut sequences; a mark, and NUL.
        "\xC2\xA0",
        "\xE3\x80\x80",
        "\xE2\x80\xA8",
        "\xC3\xA9",
        "\xE4\xB8\xAD",
        "\xF0\x9F\x98\x80",
        "\xEF\xBB\xBF",
        "\xC3",
        "\xE2\x80",
        "\xF0\x9F",
        "\x80",
        "\xBF",
        "\xC0\xBC",
        "\xED\xA0\x80",
        "\xF5",
        "\xFF",
        {"\0", 1},
        "long plain text of more than sixteen bytes, and of more than sixty-four of them, too, for whole blocks"};
    return Pieces[random() % std::size(Pieces)];
}

TEST(ByteTag, AreThoseOfTheDecodedPageOnRandomMarkup) {
    std::mt19937 random(17);
    for (int i = 0; i < 20'000; ++i) {
        std::string page;
        for (auto pieces = random() % 30; pieces > 0; --pieces) page += pieceOf(random);
        ASSERT_NO_FATAL_FAILURE(expectSameTags(page));
    }
}

TEST(ByteTag, AreThoseOfTheDecodedPageOnDamagedPages) {
    std::mt19937 random(18);
    std::size_t pages = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(VELMO_PAGES)) {
        if (entry.path().extension() != ".html") continue;
        std::string page = test::readFile(entry.path());
        page.resize(std::min<std::size_t>(page.size(), 60'000));
        ASSERT_NO_FATAL_FAILURE(expectSameTags(page));
        for (int i = 0; i < 50 && !page.empty(); ++i) page[random() % page.size()] = static_cast<char>(random());
        for (int i = 0; i < 50; ++i) page.insert(random() % (page.size() + 1), pieceOf(random));
        ASSERT_NO_FATAL_FAILURE(expectSameTags(page));
        ++pages;
    }
    EXPECT_GT(pages, 30u);
}

template <class Unit>
detail::Marks scalarMarks(const Unit* units) {
    detail::Marks marks;
    detail::markKernels::markScalar(units, marks);
    return marks;
}

template <class Unit>
void expectSameMarks(const Unit* units) {
    const detail::Marks expected = scalarMarks(units);
    detail::Marks marks;
    detail::markKernel<Unit>()(units, marks);
    EXPECT_EQ(marks, expected);
#if defined(__SSE2__)
    detail::markKernels::markSse2(units, marks);
    EXPECT_EQ(marks, expected);
    if (detail::machine::hasAvx2()) {
        detail::markKernels::markAvx2(units, marks);
        EXPECT_EQ(marks, expected);
    }
#endif
}

TEST(ByteTag, ComeFromMarksThatAllKernelsFind) {
    std::mt19937 random(19);
    for (int i = 0; i < 2'000; ++i) {
        char bytes[64];
        char16_t units[64], wide[64];
        for (int k = 0; k < 64; ++k) {
            bytes[k] = random() % 4 ? "<>=\"'ab /\xFF"[random() % 10] : static_cast<char>(random());
            units[k] = static_cast<unsigned char>(bytes[k]);
            // Units that end in a mark are none.
            wide[k] = random() % 2 ? units[k] : static_cast<char16_t>(units[k] | 0x3D00);
        }
        expectSameMarks(bytes);
        expectSameMarks(units);
        expectSameMarks(wide);
        EXPECT_EQ(scalarMarks(bytes), scalarMarks(units));
    }
}

/// The > of the tag in which a place is, one unit after the other.
std::size_t endOfTag(std::string_view page, std::size_t at) {
    while ((at = page.find_first_of("=>", at)) < page.size() && page[at] == '=') {
        ++at;
        if (at < page.size() && page[at] != '"' && page[at] != '\'') at = page.find_first_of("\"'>", at);
        if (at >= page.size() || page[at] == '>') break;
        const std::size_t twin = page.find(page[at], at + 1);
        at = twin == page.npos ? page.size() : twin + 1;
    }
    return std::min(at, page.size());
}

/// From any place, and up to the last unit.
TEST(ByteTag, ComeFromAnIndexOfMarks) {
    std::mt19937 random(21);
    std::size_t plainTags = 0;
    for (int i = 0; i < 2'000; ++i) {
        std::string bytes;
        for (auto length = random() % 200; length > 0; --length)
            bytes += "<>=\"'ab /\xFF"[random() % (5 + random() % 6)];
        detail::MarkIndex<char> index(bytes);
        const auto expectFound = [&](const char* found, std::string_view marks, std::size_t from) {
            EXPECT_EQ(static_cast<std::size_t>(found - bytes.data()),
                      std::min(bytes.find_first_of(marks, from), bytes.size()));
        };
        for (std::size_t at = 0; at <= bytes.size(); at += random() % 9) {
            expectFound(index.less(bytes.data() + at), "<", at);
            expectFound(index.equalOrGreater(bytes.data() + at), "=>", at);
            expectFound(index.quoteOrGreater(bytes.data() + at), "\"'>", at);
            expectFound(index.singleQuote(bytes.data() + at), "'", at);
            if (const char* const last = index.endOfPlainTag(bytes.data() + at)) {
                EXPECT_EQ(static_cast<std::size_t>(last - bytes.data()), endOfTag(bytes, at)) << bytes.substr(at);
                ++plainTags;
            }
        }
    }
    EXPECT_GT(plainTags, 1000u);
}

}  // namespace
}  // namespace velmo
