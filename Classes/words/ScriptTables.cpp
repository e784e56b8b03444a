// The stretches are blocks of Unicode 15.0. A script with one large language is taken for that
// language's, though smaller ones may use it: who reads such a text is served by the name. Those of
// several large languages are left to words and letters.
#include "words/ScriptTables.h"

namespace velmo::detail {
namespace {

// clang-format off
constexpr ScriptRow Rows[] = {
    {u"Latn", 0x0040, 0x007F, u""},
    {u"Latn", 0x00C0, 0x024F, u""},
    {u"Latn", 0x1E00, 0x1EFF, u""},
    {u"Grek", 0x0370, 0x03FF, u"EL"},
    {u"Grek", 0x1F00, 0x1FFF, u"EL"},
    {u"Cyrl", 0x0400, 0x052F, u""},
    {u"Armn", 0x0530, 0x058F, u"HY"},
    {u"Hebr", 0x0590, 0x05FF, u"HE", 1, 0, true},
    {u"Arab", 0x0600, 0x06FF, u""},
    {u"Arab", 0x0750, 0x077F, u""},
    {u"Arab", 0x08A0, 0x08FF, u""},
    {u"Arab", 0xFB50, 0xFDFF, u""},
    {u"Arab", 0xFE70, 0xFEFF, u""},
    {u"Thaa", 0x0780, 0x07BF, u"DV"},
    {u"Nkoo", 0x07C0, 0x07FF, u"NQO"},
    {u"Deva", 0x0900, 0x097F, u""},
    {u"Beng", 0x0980, 0x09EF, u"BN"},
    {u"Beng", 0x09F0, 0x09FF, u"AS", 1, 100},
    {u"Guru", 0x0A00, 0x0A7F, u"PA"},
    {u"Gujr", 0x0A80, 0x0AFF, u"GU"},
    {u"Orya", 0x0B00, 0x0B7F, u"OR"},
    {u"Taml", 0x0B80, 0x0BFF, u"TA"},
    {u"Telu", 0x0C00, 0x0C7F, u"TE"},
    {u"Knda", 0x0C80, 0x0CFF, u"KN"},
    {u"Mlym", 0x0D00, 0x0D7F, u"ML"},
    {u"Sinh", 0x0D80, 0x0DFF, u"SI"},
    {u"Thai", 0x0E00, 0x0E7F, u"TH"},
    {u"Laoo", 0x0E80, 0x0EFF, u"LO"},
    {u"Tibt", 0x0F00, 0x0FFF, u"BO"},
    {u"Mymr", 0x1000, 0x109F, u"MY"},
    {u"Geor", 0x10A0, 0x10FF, u"KA"},
    {u"Geor", 0x1C90, 0x1CBF, u"KA"},
    {u"Geor", 0x2D00, 0x2D2F, u"KA"},
    {u"Ethi", 0x1200, 0x124F, u"AM", 2},
    {u"Ethi", 0x1250, 0x125F, u"TI", 2, 100},  // a consonant that Amharic lacks
    {u"Ethi", 0x1260, 0x137F, u"AM", 2},
    {u"Cher", 0x13A0, 0x13FF, u"CHR", 2},
    {u"Cans", 0x1400, 0x167F, u"IU", 2},
    {u"Khmr", 0x1780, 0x17FF, u"KM"},
    {u"Mong", 0x1800, 0x18AF, u"MN"},
    {u"Olck", 0x1C50, 0x1C7F, u"SAT"},
    {u"Tfng", 0x2D30, 0x2D7F, u"ZGH"},
    {u"Mtei", 0xABC0, 0xABFF, u"MNI"},
    {u"Hang", 0x1100, 0x11FF, u"KO", 2},
    {u"Hang", 0xAC00, 0xD7FF, u"KO", 2},
    {u"Hani", 0x3400, 0x9FFF, u"ZH", 3},
    {u"Jpan", 0x3040, 0x30FF, u"JA", 2, 16},
    {u"Hani", 0xF900, 0xFAFF, u"ZH", 3},
    {u"Jpan", 0xFF60, 0xFF9F, u"JA", 2},
};
// clang-format on

}  // namespace

std::span<const ScriptRow> scriptRows() { return Rows; }

}  // namespace velmo::detail
