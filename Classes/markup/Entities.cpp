// References are looked for from & to &, and what stands between is moved in one piece. At each &
// three readers are asked in turn: the few references that need no semicolon, a number, a name.
// None of them looks farther than MaxRun units, so that a text of nothing but & is linear.
//
// A reference is never shorter than what it stands for, which is why the decoder may work in the
// place of its source.
#include <velmocore/markup/Entities.h>

#include <fmt/format.h>

#include <cstdint>
#include <string_view>

#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/ConversionTables.h>

#include "markup/EntityReference.h"
#include "markup/EntityTables.h"
#include "markup/RewriteRuns.h"
#include "markup/WebReferences.h"
#include "platform/Ascii.h"
#include "text/UnitScan.h"

namespace velmo {
namespace {

using namespace detail;

using Units = std::u16string_view;

/// The string forms do not look at shorter texts: no reference has less units.
constexpr std::size_t MinReference = 4;

/// A name or number with its terminator has at most this many units.
constexpr std::size_t MaxRun = 31;

Reference plainUnit(std::size_t taken, char16_t unit) { return {taken, {unit}, 1, true}; }

/// References that need no semicolon, nor anything else behind them. Those of markup come by the
/// thousand where a text holds a page.
Reference readLooseForm(Units text, bool convertStandard) {
    const auto form = [&](Units name, char16_t unit) -> Reference {
        if (!text.starts_with(name)) return {};
        const std::size_t length = name.size();
        return {length + (text.size() > length && text[length] == u';'), {unit}};
    };
    switch (text[1]) {
        case u'l':
            return convertStandard ? form(u"&lt", u'<') : Reference();
        case u'g':
            return convertStandard ? form(u"&gt", u'>') : Reference();
        case u'q':
            return convertStandard ? form(u"&quot", u'"') : Reference();
        case u'n':
            return form(u"&nbsp", u'\u00A0');
        case u'a':
            if (convertStandard && text.size() > 2 && text[2] == u'm') return form(u"&amp", u'&');
            return form(u"&apos", u'\'');
        default:
            return {};
    }
}

/// A name or a number is a run of units behind the & that the first other unit ends. The end
/// of the range ends it too, and then the last unit that was read counts as the terminator:
/// it does not belong to the run.
struct Run {
    std::size_t end = 0;    ///< of the run, which is also where its terminator stands; 0: none
    std::size_t taken = 0;  ///< behind the terminator if that is a semicolon, which is used up
};

template <class Belongs>
Run readRun(Units text, std::size_t position, Belongs belongs) {
    // This bound is what keeps a text of nothing but ampersands linear.
    while (position < text.size() && position <= MaxRun + 1)
        if (!belongs(text[position++])) break;
    const std::size_t length = position - 1;  // all but the &
    if (length < 2 || length > MaxRun) return {};
    return {position - 1, text[position - 1] == u';' ? position : position - 1};
}

/// The units that are significant in markup.
constexpr bool isStandard(char16_t unit) {
    return unit == u'"' || unit == u'&' || unit == u'<' || unit == u'>';
}

Reference readNumber(Units text, bool convertStandard) {
    const bool isHex = text.size() > 2 && (text[2] | 0x20) == u'x';
    const unsigned base = isHex ? 16 : 10;
    const std::size_t start = isHex ? 3 : 2;
    const Run run =
        readRun(text, start, [=](char16_t unit) { return ascii::hexValue(unit) < base; });
    if (!run.end) return {};
    std::uint32_t value = 0;
    // May wrap around: a run of up to 31 digits is read modulo 2^32, and what comes out is a
    // character if it is in the range of one.
    for (std::size_t i = start; i < run.end; ++i) value = value * base + ascii::hexValue(text[i]);
    if (value > 0x10FFFF) return {};
    if (value > 0xFFFF)
        return {run.taken,
                {static_cast<char16_t>(0xD7C0 + (value >> 10)),
                 static_cast<char16_t>(0xDC00 + (value & 0x3FF))},
                2};
    const auto unit = static_cast<char16_t>(value);
    return isStandard(unit) && !convertStandard ? Reference() : plainUnit(run.taken, unit);
}

Reference readName(Units text) {
    const CharacterSetRep& letters = alphaNumCharacterSetRep();
    const Run run = readRun(text, 1, [&](char16_t unit) { return letters.contains(unit); });
    if (!run.end) return {};
    // Names are compared as bytes: of each unit only the low one counts.
    char name[MaxRun];
    const std::size_t length = run.end - 1;
    for (std::size_t i = 0; i < length; ++i) name[i] = static_cast<char>(text[i + 1]);
    const char16_t unit = unitOfEntity({name, length});
    return unit ? plainUnit(run.taken, unit) : Reference();
}

constexpr std::uint64_t fourUnits(Units text) {
    return text[0] | std::uint64_t{text[1]} << 16 | std::uint64_t{text[2]} << 32 |
           std::uint64_t{text[3]} << 48;
}

/// The references that nearly all are where a text holds a page: &lt; &gt; &quot; and &amp; as they
/// should be. Needs six units; what is none of them is read by the others.
Reference readCommonForm(const char16_t* text) {
    constexpr std::uint64_t Angle = fourUnits({u"&\0t;", 4}), Second = 0xFFFF0000;
    const std::uint64_t four = fourUnits({text, 4});
    if ((four & ~Second) == Angle && (text[1] == u'l' || text[1] == u'g'))
        return {4, {text[1] == u'l' ? u'<' : u'>'}};
    if (four == fourUnits(u"&quo") && text[4] == u't' && text[5] == u';') return {6, {u'"'}};
    if (four == fourUnits(u"&amp") && text[4] == u';') return {5, {u'&'}};
    return {};
}

/// The same by the HTML standard, as far as the options want it.
Reference readTodaysReference(Units text, EntityOptions options) {
    const WebReference web = readWebReference(text, options.inAttribute);
    const char16_t unit = web.units[0];
    if (!web.taken || (isStandard(unit) && !options.convertStandard)) return {};
    const bool isName = text[1] != u'#' && unit != u'\'' && unit != u'\u00A0' && !isStandard(unit);
    if (isName && options.onlyNumericEntities) return {};
    return {web.taken, {unit, web.units[1]}, web.count, web.count == 1 && !isStandard(unit)};
}

/// Copies what stands in front of the next & and moves to it; gives the end of the copy. Both may
/// be parts of one array if the copy does not stand behind the original: a block is read before it
/// is written, and is never written over what is still to be read.
char16_t* copyPlain(const char16_t*& in, const char16_t* end, char16_t* out) {
#if defined(__SSE2__)
    while (end - in >= scan::BlockUnits) {
        const __m128i block = scan::loadBlock(in);
        if (const int mask = _mm_movemask_epi8(scan::equalTo(block, u'&'))) {
            if (reinterpret_cast<std::uintptr_t>(in) - reinterpret_cast<std::uintptr_t>(out) <
                sizeof(block))
                break;
            // What is written beyond is written over, and not read any more.
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out), block);
            const int count = scan::firstOf(mask);
            in += count;
            return out + count;
        }
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), block);
        in += scan::BlockUnits;
        out += scan::BlockUnits;
    }
#endif
    while (in < end && *in != u'&') *out++ = *in++;
    return out;
}

char16_t* copyPlain(const char16_t*& in, const char16_t* end, char16_t* out,
                    const ConversionTable* table) {
    if (!table) return copyPlain(in, end, out);
    while (in < end && *in != u'&') *out++ = (*table)[*in++];
    return out;
}

struct StandardForm {
    Units text;
    char16_t unit;
};

constexpr StandardForm StandardForms[] = {
    {u"&quot;", u'"'}, {u"&#60;", u'<'}, {u"&#62;", u'>'}, {u"&#38;", u'&'},
    {u"&#34;", u'"'},  {u"&amp;", u'&'}, {u"&gt;", u'>'},  {u"&lt;", u'<'},
};

/// The form that the text begins with. The farthest semicolon that can end one decides on its
/// length, and no shorter form is tried then; null if there is none.
const StandardForm* standardFormOf(Units text) {
    for (std::size_t length = 6; length >= MinReference; --length) {
        if (text.size() < length || text[length - 1] != u';') continue;
        for (const StandardForm& form : StandardForms)
            if (form.text == text.substr(0, length)) return &form;
        return nullptr;
    }
    return nullptr;
}

void appendAscii(StringBuilder& out, std::string_view text) {
    for (char c : text) out.append(static_cast<char16_t>(c));
}

void appendNumber(StringBuilder& out, char16_t unit) {
    out.append(u"&#");
    const fmt::format_int digits(static_cast<unsigned>(unit));
    appendAscii(out, {digits.data(), digits.size()});
    out.append(u';');
}

/// The text as it is written, without its & and semicolon.
Units standardName(char16_t unit) {
    switch (unit) {
        case u'"':
            return u"&quot;";
        case u'&':
            return u"&amp;";
        case u'<':
            return u"&lt;";
        default:
            return u"&gt;";
    }
}

}  // namespace

Reference detail::readReference(Units text, EntityOptions options) {
    if (options.convertStandard && text.size() >= 6)
        if (const Reference common = readCommonForm(text.data()); common.taken) return common;
    if (text.size() < 2) return {};
    if (options.web.references) return readTodaysReference(text, options);
    if (const Reference loose = readLooseForm(text, options.convertStandard); loose.taken)
        return loose;
    if (text[1] == u'#') return readNumber(text, options.convertStandard);
    return options.onlyNumericEntities ? Reference() : readName(text);
}

std::size_t convertEntities2Characters(const char16_t* source, char16_t* destination,
                                       std::size_t location, std::size_t length,
                                       EntityOptions options) {
    const ConversionTable* const table = options.nonUmlauted ? &umlautsCharsTable() : nullptr;
    const char16_t* in = source + location;
    const char16_t* const end = in + length;
    char16_t* out = destination;
    while (in < end) {
        out = copyPlain(in, end, out, table);
        if (in == end) break;
        const Reference reference = readReference({in, end}, options);
        if (!reference.taken) {
            *out++ = *in++;
            continue;
        }
        for (std::size_t i = 0; i < reference.count; ++i) {
            const char16_t unit = reference.units[i];
            *out++ = table && reference.isPlain ? (*table)[unit] : unit;
        }
        in += reference.taken;
    }
    return static_cast<std::size_t>(out - destination);
}

String stringByConvertingEntitiesToCharacters(const String& string, EntityOptions options) {
    const std::size_t length = string.length();
    if (length < MinReference && !options.web.references) return string;
    if (scan::find(string.begin(), string.end(), u'&') == string.end()) return string;
    StringBuilder out(length);
    out.commit(convertEntities2Characters(string.characters(), out.data(), 0, length, options));
    return out.length() == length ? string : out.finish();
}

String stringByConvertingEntitiesToCharactersNonUmlauted(const String& string, bool nonUmlauted) {
    return stringByConvertingEntitiesToCharacters(string, {.nonUmlauted = nonUmlauted});
}

std::size_t convertStdEntities2Characters(char16_t* characters, std::size_t length) {
    const char16_t* in = characters;
    const char16_t* const end = in + length;
    char16_t* out = characters;
    while (in < end) {
        out = copyPlain(in, end, out);
        if (in == end) break;
        const StandardForm* const form = standardFormOf({in, end});
        *out++ = form ? form->unit : u'&';
        in += form ? form->text.size() : 1;
    }
    return static_cast<std::size_t>(out - characters);
}

String stringByConvertingStandardEntitiesToCharacters(const String& string) {
    const std::size_t length = string.length();
    if (length < MinReference) return string;
    if (scan::find(string.begin(), string.end(), u'&') == string.end()) return string;
    StringBuilder out(length);
    out.append(string.view());
    out.truncate(convertStdEntities2Characters(out.data(), length));
    return out.length() == length ? string : out.finish();
}

String stringByConvertingCharactersToEntities(const String& string) {
    return rewriteRuns(string, &scan::findNonAscii,
                       [](const char16_t* at, const char16_t*, StringBuilder& out) {
                           const std::string_view name = entityOfUnit(*at);
                           if (name.empty()) {
                               appendNumber(out, *at);
                           } else {
                               out.append(u'&');
                               appendAscii(out, name);
                               out.append(u';');
                           }
                           return at + 1;
                       });
}

String stringByConvertingCharactersToEntities(const String& string, bool highOnly) {
    return highOnly ? stringByConvertingHighCharactersToEntities(string)
                    : stringByConvertingCharactersToStandardEntities(string);
}

String stringByConvertingHighCharactersToEntities(const String& string) {
    return rewriteRuns(string, &scan::findNonAscii,
                       [](const char16_t* at, const char16_t*, StringBuilder& out) {
                           appendNumber(out, *at);
                           return at + 1;
                       });
}

String stringByConvertingCharactersToStandardEntities(const String& string) {
    return rewriteRuns(string, &scan::findAnyOf<u'"', u'&', u'<', u'>'>,
                       [](const char16_t* at, const char16_t*, StringBuilder& out) {
                           out.append(standardName(*at));
                           return at + 1;
                       });
}

void initConversionTables() { (void)alphaNumCharacterSetRep(); }

}  // namespace velmo
