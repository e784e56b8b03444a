// Tags scanned in bytes are those of the decoded page, whatever the bytes are.
#include "markup/ByteTag.h"

#include <filesystem>
#include <random>

#include "TestSupport.h"
#include "markup/MarkIndex.h"
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

/// The marks of bytes are those of units, at any place of a block and up to the last one.
TEST(ByteTag, ComeFromMarksThatAreTheSame) {
    std::mt19937 random(19);
    for (int i = 0; i < 2'000; ++i) {
        std::string bytes;
        for (auto length = random() % 200; length > 0; --length) bytes += "<>=\"'ab /\xFF"[random() % 10];
        std::u16string units(bytes.begin(), bytes.end());
        detail::MarkIndex<char> ofBytes(bytes);
        detail::MarkIndex<char16_t> ofUnits(units);
        for (std::size_t at = 0; at <= bytes.size(); at += 1 + random() % 9) {
            EXPECT_EQ(ofBytes.less(bytes.data() + at) - bytes.data(), ofUnits.less(units.data() + at) - units.data());
            EXPECT_EQ(ofBytes.equalOrGreater(bytes.data() + at) - bytes.data(),
                      ofUnits.equalOrGreater(units.data() + at) - units.data());
            EXPECT_EQ(ofBytes.quoteOrGreater(bytes.data() + at) - bytes.data(),
                      ofUnits.quoteOrGreater(units.data() + at) - units.data());
        }
    }
}

}  // namespace
}  // namespace velmo
