// Each encoding that a page can name is decoded as pages mean the name, which is not
// always what the name's standard says: the browsers' readings are the measure. The rows
// were compared byte by byte with the published mapping files, and where ICU's converter
// differs from what is meant, "own" bytes and repairs put it right.
//
// Encodings that pages can name and that have no converter here: the Mac scripts 4, 5, 9 to
// 24, 26 to 28, 30, 31, 39, 40, 140 and 236, the Mac arrangement of Latin 1 (2564), Johab
// (1296, 1601), bare JIS sets (1568 to 1572), Shift JIS X0213 (1576) and Big5-E (2569).
#include "platform/EncodingTables.h"

#include <algorithm>
#include <iterator>

namespace velmo::detail {
namespace {

// Kamenicky, 129 bytes that are not Latin 1. E2 is kept as it has always been read, though
// the letter that the code page means there is another.
constexpr ByteUnit Kamenicky[] = {
    {0x7F, 0x2302}, {0x80, 0x010C}, {0x81, 0x00FC}, {0x82, 0x00E9}, {0x83, 0x010F}, {0x84, 0x00E4},
    {0x85, 0x010E}, {0x86, 0x0164}, {0x87, 0x010D}, {0x88, 0x011B}, {0x89, 0x011A}, {0x8A, 0x0139},
    {0x8B, 0x00CD}, {0x8C, 0x013E}, {0x8D, 0x013A}, {0x8E, 0x00C4}, {0x8F, 0x00C1}, {0x90, 0x00C9},
    {0x91, 0x017E}, {0x92, 0x017D}, {0x93, 0x00F4}, {0x94, 0x00F6}, {0x95, 0x00D3}, {0x96, 0x016F},
    {0x97, 0x00DA}, {0x98, 0x00FD}, {0x99, 0x00D6}, {0x9A, 0x00DC}, {0x9B, 0x0160}, {0x9C, 0x013D},
    {0x9D, 0x00DD}, {0x9E, 0x0158}, {0x9F, 0x0165}, {0xA0, 0x00E1}, {0xA1, 0x00ED}, {0xA2, 0x00F3},
    {0xA3, 0x00FA}, {0xA4, 0x0148}, {0xA5, 0x0147}, {0xA6, 0x016E}, {0xA7, 0x00D4}, {0xA8, 0x0161},
    {0xA9, 0x0159}, {0xAA, 0x0155}, {0xAB, 0x0154}, {0xAC, 0x00BC}, {0xAD, 0x00A7}, {0xAE, 0x00BB},
    {0xAF, 0x00AB}, {0xB0, 0x2591}, {0xB1, 0x2592}, {0xB2, 0x2593}, {0xB3, 0x2502}, {0xB4, 0x2524},
    {0xB5, 0x2561}, {0xB6, 0x2562}, {0xB7, 0x2556}, {0xB8, 0x2555}, {0xB9, 0x2563}, {0xBA, 0x2551},
    {0xBB, 0x2557}, {0xBC, 0x255D}, {0xBD, 0x255C}, {0xBE, 0x255B}, {0xBF, 0x2510}, {0xC0, 0x2514},
    {0xC1, 0x2534}, {0xC2, 0x252C}, {0xC3, 0x251C}, {0xC4, 0x2500}, {0xC5, 0x253C}, {0xC6, 0x255E},
    {0xC7, 0x255F}, {0xC8, 0x255A}, {0xC9, 0x2554}, {0xCA, 0x2569}, {0xCB, 0x2566}, {0xCC, 0x2560},
    {0xCD, 0x2550}, {0xCE, 0x256C}, {0xCF, 0x2567}, {0xD0, 0x2568}, {0xD1, 0x2564}, {0xD2, 0x2565},
    {0xD3, 0x2559}, {0xD4, 0x2558}, {0xD5, 0x2552}, {0xD6, 0x2553}, {0xD7, 0x256B}, {0xD8, 0x256A},
    {0xD9, 0x2518}, {0xDA, 0x250C}, {0xDB, 0x2588}, {0xDC, 0x2584}, {0xDD, 0x258C}, {0xDE, 0x2590},
    {0xDF, 0x2580}, {0xE0, 0x03B1}, {0xE1, 0x03B2}, {0xE2, 0x0194}, {0xE3, 0x03C0}, {0xE4, 0x03A3},
    {0xE5, 0x03C3}, {0xE6, 0x03BC}, {0xE7, 0x03C4}, {0xE8, 0x03A6}, {0xE9, 0x0398}, {0xEA, 0x03A9},
    {0xEB, 0x03B4}, {0xEC, 0x221E}, {0xED, 0x03C6}, {0xEE, 0x2208}, {0xEF, 0x2229}, {0xF0, 0x224D},
    {0xF1, 0x00B1}, {0xF2, 0x2265}, {0xF3, 0x2264}, {0xF4, 0x2320}, {0xF5, 0x2321}, {0xF6, 0x00F7},
    {0xF7, 0x2248}, {0xF8, 0x00B0}, {0xF9, 0x2219}, {0xFA, 0x00B7}, {0xFB, 0x221A}, {0xFC, 0x207F},
    {0xFD, 0x00B2}, {0xFE, 0x25A0}, {0xFF, 0x00A0},
};

// KOI8-CS2, 82 bytes that are not Latin 1. Bytes without a row stay what they are.
constexpr ByteUnit Koi8Cs2[] = {
    {0x24, 0x00A4}, {0xA2, 0x00B4}, {0xA4, 0x007E}, {0xA6, 0x02D8}, {0xA7, 0x02D9}, {0xAA, 0x02DA},
    {0xAB, 0x00B8}, {0xAD, 0x02DD}, {0xAE, 0x02DB}, {0xAF, 0x02C7}, {0xB0, 0x00A9}, {0xB1, 0x2122},
    {0xB2, 0x250C}, {0xB3, 0x2510}, {0xB4, 0x2514}, {0xB5, 0x2518}, {0xB6, 0x2500}, {0xB7, 0x2193},
    {0xB8, 0x03A9}, {0xB9, 0x00A7}, {0xBA, 0x03B1}, {0xBB, 0x03B3}, {0xBC, 0x03B5}, {0xBD, 0x03BC},
    {0xBE, 0x03C0}, {0xBF, 0x03C9}, {0xC0, 0x00E0}, {0xC1, 0x00E1}, {0xC2, 0x01CE}, {0xC3, 0x010D},
    {0xC4, 0x010F}, {0xC5, 0x011B}, {0xC6, 0x0155}, {0xC8, 0x00FC}, {0xC9, 0x00ED}, {0xCA, 0x016F},
    {0xCB, 0x013A}, {0xCC, 0x013E}, {0xCD, 0x00F6}, {0xCE, 0x0148}, {0xCF, 0x00F3}, {0xD0, 0x00F4},
    {0xD1, 0x00E4}, {0xD2, 0x0159}, {0xD3, 0x0161}, {0xD4, 0x0165}, {0xD5, 0x00FA}, {0xD6, 0x00EB},
    {0xD7, 0x00E9}, {0xD8, 0x0171}, {0xD9, 0x00FD}, {0xDA, 0x017E}, {0xDD, 0x0151}, {0xDE, 0x0117},
    {0xE0, 0x00C0}, {0xE1, 0x00C1}, {0xE2, 0x01CD}, {0xE3, 0x010C}, {0xE4, 0x010E}, {0xE5, 0x011A},
    {0xE6, 0x0154}, {0xE8, 0x00DC}, {0xE9, 0x00CD}, {0xEA, 0x016E}, {0xEB, 0x0139}, {0xEC, 0x013D},
    {0xED, 0x00D6}, {0xEE, 0x0147}, {0xEF, 0x00D3}, {0xF0, 0x00D4}, {0xF1, 0x00C4}, {0xF2, 0x0158},
    {0xF3, 0x0160}, {0xF4, 0x0164}, {0xF5, 0x00DA}, {0xF6, 0x00CB}, {0xF7, 0x00C9}, {0xF8, 0x0170},
    {0xF9, 0x00DD}, {0xFA, 0x017D}, {0xFD, 0x0150}, {0xFE, 0x0116},
};

// Latin 10, 40 bytes that are not Latin 1; from the mapping file of ISO 8859-16.
constexpr ByteUnit Latin10[] = {
    {0xA1, 0x0104}, {0xA2, 0x0105}, {0xA3, 0x0141}, {0xA4, 0x20AC}, {0xA5, 0x201E}, {0xA6, 0x0160},
    {0xA8, 0x0161}, {0xAA, 0x0218}, {0xAC, 0x0179}, {0xAE, 0x017A}, {0xAF, 0x017B}, {0xB2, 0x010C},
    {0xB3, 0x0142}, {0xB4, 0x017D}, {0xB5, 0x201D}, {0xB8, 0x017E}, {0xB9, 0x010D}, {0xBA, 0x0219},
    {0xBC, 0x0152}, {0xBD, 0x0153}, {0xBE, 0x0178}, {0xBF, 0x017C}, {0xC3, 0x0102}, {0xC5, 0x0106},
    {0xD0, 0x0110}, {0xD1, 0x0143}, {0xD5, 0x0150}, {0xD7, 0x015A}, {0xD8, 0x0170}, {0xDD, 0x0118},
    {0xDE, 0x021A}, {0xE3, 0x0103}, {0xE5, 0x0107}, {0xF0, 0x0111}, {0xF1, 0x0144}, {0xF5, 0x0151},
    {0xF7, 0x015B}, {0xF8, 0x0171}, {0xFD, 0x0119}, {0xFE, 0x021B},
};

// The Mac scripts beside Mac Roman: 20, 6 and 6 bytes, from the mapping files of these.
constexpr ByteUnit MacCroatian[] = {
    {0xA9, 0x0160}, {0xAE, 0x017D}, {0xB4, 0x2206}, {0xB9, 0x0161}, {0xBE, 0x017E},
    {0xC6, 0x0106}, {0xC8, 0x010C}, {0xD0, 0x0110}, {0xD8, 0xF8FF}, {0xD9, 0x00A9},
    {0xDE, 0x00C6}, {0xDF, 0x00BB}, {0xE0, 0x2013}, {0xE6, 0x0107}, {0xE8, 0x010D},
    {0xF0, 0x0111}, {0xF9, 0x03C0}, {0xFA, 0x00CB}, {0xFD, 0x00CA}, {0xFE, 0x00E6},
};
constexpr ByteUnit MacIcelandic[] = {
    {0xA0, 0x00DD}, {0xDC, 0x00D0}, {0xDD, 0x00F0}, {0xDE, 0x00DE}, {0xDF, 0x00FE}, {0xE0, 0x00FD},
};
constexpr ByteUnit MacRomanian[] = {
    {0xAE, 0x0102}, {0xAF, 0x0218}, {0xBE, 0x0103}, {0xBF, 0x0219}, {0xDE, 0x021A}, {0xDF, 0x021B},
};

// What the IBM code pages of ICU read otherwise than the mapping files of these pages.
constexpr ByteUnit MicroSign[] = {{0xE6, 0x00B5}};  // ICU: the Greek letter mu
constexpr ByteUnit NotSign[] = {{0xAA, 0x00AC}};    // ICU: nothing
constexpr ByteUnit GreekDos[] = {{0x88, 0x00B7}, {0xEF, 0x0384}};

// Bytes without a meaning, for which ICU has private or control characters.
constexpr ByteUnit GreekWindows[] = {{0xAA, 0xFFFD}};
constexpr ByteUnit Thai[] = {{0xDB, 0xFFFD}, {0xDC, 0xFFFD}, {0xDD, 0xFFFD}, {0xDE, 0xFFFD},
                             {0xFC, 0xFFFD}, {0xFD, 0xFFFD}, {0xFE, 0xFFFD}, {0xFF, 0xFFFD}};

// Shift JIS of the Mac has these single bytes besides.
constexpr ByteUnit MacJapanese[] = {
    {0x80, 0x005C}, {0xA0, 0x00A0}, {0xFD, 0x00A9}, {0xFE, 0x2122}, {0xFF, 0x2026}};

// Pages in GBK write the euro sign as Windows does; GB 18030 has no such byte.
constexpr ByteUnit EuroSign[] = {{0x80, 0x20AC}};

// IBM's Shift JIS turns three control characters round.
constexpr ByteRepair TurnedControls[] = {
    {0x1A, 0x001C, 0x001A}, {0x1C, 0x007F, 0x001C}, {0x7F, 0x001A, 0x007F}};

// A byte that no Korean character has; ICU gives a private character.
constexpr ByteRepair KoreanFF[] = {{0xFF, 0xF8F7, 0xFFFD}};

// Shift JIS, whatever it is called, is that of Windows: with the NEC and IBM rows, a
// backslash for 5C, a tilde for 7E and the full-width tilde (U+FF5E) for the wave dash.
constexpr char ShiftJis[] = "ibm-943_P15A-2003";

// Korean pages are written in the unified Hangul code, the superset of EUC-KR that Windows
// brought. ICU's own "EUC-KR" knows the 2,350 syllables of the standard only.
constexpr char Korean[] = "windows-949-2000";

// Pages that say GB2312 or GBK are read by browsers as GB 18030, which holds both. They are
// written in the smaller set that the name promises.
constexpr char Chinese[] = "gb18030";
constexpr char ChineseEncoder[] = "windows-936-2000";

// Pages that say Big5 use the Hong Kong supplement and the ETEN rows. Where ICU's "Big5",
// the page of Windows, has characters that are not private, the two agree (but for F9FE).
constexpr char Big5[] = "ibm-1375_P100-2008";
constexpr char Big5Encoder[] = "windows-950-2000";

// The reading with all registers of ISO-2022-JP-2 takes in those of -JP and -JP-1, and half-
// width katakana. It also serves -JP-3, but for the characters of JIS X0213.
constexpr char Iso2022Jp[] = "ISO_2022,locale=ja,version=2";
constexpr char Iso2022JpEncoder[] = "ISO_2022,locale=ja,version=0";

using enum EncodingKind;

// 86 encodings. Numbers are those of the platform's text encodings.
constexpr EncodingRow Rows[] = {
    // Mac scripts
    {0, SingleByte, "macintosh", "macos-0_2-10.2"},
    {1, DoubleByte, "x-mac-japanese", ShiftJis, nullptr, MacJapanese, TurnedControls},
    {2, DoubleByte, "x-mac-chinesetrad", Big5, Big5Encoder},
    {3, DoubleByte, "x-mac-korean", Korean, nullptr, {}, KoreanFF},
    {6, SingleByte, "x-mac-greek", "macos-6_2-10.4"},
    {7, SingleByte, "x-mac-cyrillic", "macos-7_3-10.2"},
    {25, DoubleByte, "x-mac-chinesesimp", Chinese, ChineseEncoder, EuroSign},
    {29, SingleByte, "x-mac-ce", "macos-29-10.2"},
    {35, SingleByte, "x-mac-turkish", "macos-35-10.2"},
    {36, SingleByte, "x-mac-croatian", "macos-0_2-10.2", nullptr, MacCroatian},
    {37, SingleByte, "x-mac-icelandic", "macos-0_2-10.2", nullptr, MacIcelandic},
    {38, SingleByte, "x-mac-romanian", "macos-0_2-10.2", nullptr, MacRomanian},
    // Since Mac OS 9 the Cyrillic script has the Ukrainian letters too.
    {152, SingleByte, "x-mac-ukrainian", "macos-7_3-10.2"},

    {256, UTF16, "utf-16"},

    // ISO 8859. Latin 1 is exact: 80 to 9F are control characters, and it is a page's own
    // trials that tell whether Windows was meant. Latin 5 and Thai are read as the Windows
    // pages that hold them, as the bytes 80 to 9F have no other use.
    {513, SingleByte, "iso-8859-1", "ISO-8859-1"},
    {514, SingleByte, "iso-8859-2", "ibm-912_P100-1995"},
    {515, SingleByte, "iso-8859-3", "ibm-913_P100-2000"},
    {516, SingleByte, "iso-8859-4", "ibm-914_P100-1995"},
    {517, SingleByte, "iso-8859-5", "ibm-915_P100-1995"},
    {518, SingleByte, "iso-8859-6", "ibm-1089_P100-1995"},
    // The revision of 2003, with the euro sign.
    {519, SingleByte, "iso-8859-7", "ibm-9005_X110-2007"},
    // The revision of 1999, with the direction marks.
    {520, SingleByte, "iso-8859-8", "ibm-5012_P100-1999"},
    {521, SingleByte, "iso-8859-9", "ibm-5350_P100-1998"},
    {522, SingleByte, "iso-8859-10", "iso-8859_10-1998"},
    {523, SingleByte, "iso-8859-11", "windows-874-2000", nullptr, Thai},
    {525, SingleByte, "iso-8859-13", "ibm-921_P100-1995"},
    {526, SingleByte, "iso-8859-14", "iso-8859_14-1998"},
    {527, SingleByte, "iso-8859-15", "ibm-923_P100-1998"},
    {528, SingleByte, "iso-8859-16", "ISO-8859-1", nullptr, Latin10},

    // DOS
    {1024, SingleByte, "ibm437", "ibm-437_P100-1995", nullptr, MicroSign},
    {1029, SingleByte, "ibm737", "ibm-737_P100-1997"},
    {1030, SingleByte, "ibm775", "ibm-775_P100-1996"},
    {1040, SingleByte, "ibm850", "ibm-850_P100-1995"},
    {1041, SingleByte, "ibm851", "ibm-851_P100-1995"},
    {1042, SingleByte, "ibm852", "ibm-852_P100-1995", nullptr, NotSign},
    {1043, SingleByte, "ibm855", "ibm-855_P100-1995"},
    {1044, SingleByte, "ibm857", "ibm-857_P100-1995"},
    {1045, SingleByte, "ibm860", "ibm-860_P100-1995", nullptr, MicroSign},
    {1046, SingleByte, "ibm861", "ibm-861_P100-1995", nullptr, MicroSign},
    {1047, SingleByte, "ibm862", "ibm-862_P100-1995", nullptr, MicroSign},
    {1048, SingleByte, "ibm863", "ibm-863_P100-1995", nullptr, MicroSign},
    {1049, SingleByte, "ibm864", "ibm-864_X110-1999"},
    {1050, SingleByte, "ibm865", "ibm-865_P100-1995", nullptr, MicroSign},
    {1051, SingleByte, "ibm866", "ibm-866_P100-1995"},
    {1052, SingleByte, "ibm869", "ibm-869_P100-1995", nullptr, GreekDos},
    {1053, SingleByte, "windows-874", "windows-874-2000", nullptr, Thai},
    {1056, DoubleByte, "cp932", ShiftJis, nullptr, {}, TurnedControls},
    {1057, DoubleByte, "cp936", Chinese, ChineseEncoder, EuroSign},
    {1058, DoubleByte, "cp949", Korean, nullptr, {}, KoreanFF},
    {1059, DoubleByte, "cp950", Big5, Big5Encoder},

    // Windows. Bytes without a character are the control character of their number.
    {1280, SingleByte, "windows-1252", "ibm-5348_P100-1997"},
    {1281, SingleByte, "windows-1250", "ibm-5346_P100-1998"},
    {1282, SingleByte, "windows-1251", "ibm-5347_P100-1998"},
    {1283, SingleByte, "windows-1253", "ibm-5349_P100-1998", nullptr, GreekWindows},
    {1284, SingleByte, "windows-1254", "ibm-5350_P100-1998"},
    {1285, SingleByte, "windows-1255", "ibm-9447_P100-2002"},
    {1286, SingleByte, "windows-1256", "ibm-9448_X100-2005"},
    {1287, SingleByte, "windows-1257", "ibm-9449_P100-2002"},
    {1288, SingleByte, "windows-1258", "ibm-5354_P100-1998"},

    {1536, ASCII, "us-ascii"},

    // National sets: their EUC form, which is what pages hold that name the bare set.
    {1584, DoubleByte, "gb_2312-80", Chinese, ChineseEncoder, EuroSign},
    {1585, DoubleByte, "gbk", Chinese, ChineseEncoder, EuroSign},
    {1586, DoubleByte, "gb18030", Chinese},
    {1600, DoubleByte, "ks_c_5601-1987", Korean, nullptr, {}, KoreanFF},
    {2080, Streamed, "iso-2022-jp", Iso2022Jp, Iso2022JpEncoder},
    {2081, Streamed, "iso-2022-jp-2", Iso2022Jp},
    {2082, Streamed, "iso-2022-jp-1", Iso2022Jp, "ISO_2022,locale=ja,version=1"},
    {2083, Streamed, "iso-2022-jp-3", Iso2022Jp, Iso2022JpEncoder},
    // With the rows of NEC and IBM and the units of Windows for the wave dash and its like.
    {2336, DoubleByte, "euc-jp", "euc-jp-2007"},
    {2352, DoubleByte, "gb2312", Chinese, ChineseEncoder, EuroSign},
    {2353, DoubleByte, "euc-tw", "euc-tw-2014"},
    {2368, DoubleByte, "euc-kr", Korean, nullptr, {}, KoreanFF},
    {2561, DoubleByte, "shift_jis", ShiftJis, nullptr, {}, TurnedControls},
    {2562, SingleByte, "koi8-r", "ibm-878_P100-1996"},
    {2563, DoubleByte, "big5", Big5, Big5Encoder},
    {2565, Streamed, "hz-gb-2312", "HZ"},
    {2566, DoubleByte, "big5-hkscs", Big5},
    {2568, SingleByte, "koi8-u", "ibm-1168_P100-2002"},

    // The two Czech encodings of the library's own.
    {40961, SingleByte, "x-kam-cs", "ISO-8859-1", nullptr, Kamenicky},
    {40962, SingleByte, "koi8-cs2", "ISO-8859-1", nullptr, Koi8Cs2},

    {0x08000100, UTF8, "utf-8"},
    {0x0C000100, Streamed, "utf-32", "UTF-32"},
    {0x10000100, BigEndian, "utf-16be"},
    {0x14000100, LittleEndian, "utf-16le"},
    {0x18000100, Streamed, "utf-32be", "UTF-32BE"},
    {0x1C000100, Streamed, "utf-32le", "UTF-32LE"},
};

constexpr bool inOrder =
    std::ranges::is_sorted(Rows, std::ranges::less_equal(), &EncodingRow::number);
static_assert(inOrder, "the rows are searched by number");

}  // namespace

std::span<const EncodingRow> encodingRows() noexcept { return Rows; }

const EncodingRow* encodingRow(std::uint32_t number) noexcept {
    const auto row = std::ranges::lower_bound(Rows, number, {}, &EncodingRow::number);
    return row != std::end(Rows) && row->number == number ? row : nullptr;
}

}  // namespace velmo::detail
