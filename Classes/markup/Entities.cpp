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

#include "markup/EntityTables.h"
#include "markup/RewriteRuns.h"
#include "platform/Ascii.h"
#include "text/UnitScan.h"

namespace velmo {
namespace {

using namespace detail;

using Units = std::u16string_view;
using Traits = std::char_traits<char16_t>;

/// The string forms do not look at shorter texts: no reference has less units.
constexpr std::size_t MinReference = 4;

/// A name or number with its terminator has at most this many units.
constexpr std::size_t MaxRun = 31;

/// A decoded reference.
struct Reference {
    std::size_t taken = 0;  ///< units of the text; 0 if this is no reference
    char16_t units[2] = {};
    std::size_t count = 1;
    bool isPlain = false;  ///< treated like any other unit of the text
};

Reference plainUnit(std::size_t taken, char16_t unit) { return {taken, {unit}, 1, true}; }

struct LooseForm {
    Units text;
    char16_t unit;
    bool isStandard;
};

/// References that need no semicolon, nor anything else behind them.
constexpr LooseForm LooseForms[] = {
    {u"&apos", u'\'', false}, {u"&nbsp", u'\u00A0', false}, {u"&quot", u'"', true},
    {u"&amp", u'&', true},    {u"&lt", u'<', true},         {u"&gt", u'>', true},
};

Reference readLooseForm(Units text, bool convertStandard) {
    for (const LooseForm& form : LooseForms) {
        if (form.isStandard && !convertStandard) continue;
        // One unit rules most forms out without a call.
        if (text[1] != form.text[1] || !text.starts_with(form.text)) continue;
        const std::size_t length = form.text.size();
        return {length + (text.size() > length && text[length] == u';'), {form.unit}};
    }
    return {};
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
    const bool isStandard = unit == u'"' || unit == u'&' || unit == u'<' || unit == u'>';
    return isStandard && !convertStandard ? Reference() : plainUnit(run.taken, unit);
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

/// Reads the reference that the text, from its & on, begins with.
Reference readReference(Units text, EntityOptions options) {
    if (text.size() < 2) return {};
    if (const Reference loose = readLooseForm(text, options.convertStandard); loose.taken)
        return loose;
    if (text[1] == u'#') return readNumber(text, options.convertStandard);
    return options.onlyNumericEntities ? Reference() : readName(text);
}

char16_t* copyPlain(const char16_t* from, const char16_t* to, char16_t* out,
                    const ConversionTable* table) {
    if (!table) {
        if (from != out) Traits::move(out, from, static_cast<std::size_t>(to - from));
        return out + (to - from);
    }
    while (from < to) *out++ = (*table)[*from++];
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

std::size_t convertEntities2Characters(const char16_t* source, char16_t* destination,
                                       std::size_t location, std::size_t length,
                                       EntityOptions options) {
    const ConversionTable* const table = options.nonUmlauted ? &umlautsCharsTable() : nullptr;
    const char16_t* in = source + location;
    const char16_t* const end = in + length;
    char16_t* out = destination;
    while (in < end) {
        const char16_t* const ampersand = scan::find(in, end, u'&');
        out = copyPlain(in, ampersand, out, table);
        in = ampersand;
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
    if (length < MinReference) return string;
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
        const char16_t* const ampersand = scan::find(in, end, u'&');
        out = copyPlain(in, ampersand, out, nullptr);
        in = ampersand;
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
