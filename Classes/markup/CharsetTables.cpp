// The rows are tried from the first to the last, and the first hit counts: where one name contains
// another, their order is part of the meaning. What stands last in a row is a text encoding by its
// number.
#include "markup/CharsetTables.h"

namespace velmo::detail {
namespace {

/// 68 numbers. Those that stand for Latin 1 (513) besides 8859-1 are the misspellings of it
/// that pages have; 646 is EUC-JP on purpose.
constexpr CharsetNumber Numbers[] = {
    {437, 1024},   {1250, 1281},  {1251, 1282},  {1252, 1280},  {1253, 1283},  {1254, 1284},
    {1255, 1285},  {1256, 1286},  {1257, 1287},  {1258, 1288},  {708, 518},    {737, 1029},
    {775, 1030},   {850, 1040},   {851, 1041},   {852, 1042},   {855, 1043},   {857, 1044},
    {860, 1045},   {861, 1046},   {862, 1047},   {863, 1048},   {864, 1049},   {865, 1050},
    {866, 1051},   {869, 1052},   {874, 1053},   {932, 1056},   {936, 1057},   {949, 1058},
    {950, 1059},   {646, 2336},   {6461, 2336},  {1361, 1296},  {8591, 513},   {8859, 513},
    {80591, 513},  {85591, 513},  {88191, 513},  {88391, 513},  {88511, 513},  {88571, 513},
    {88581, 513},  {88591, 513},  {88611, 513},  {88691, 513},  {88791, 513},  {89091, 513},
    {99591, 513},  {100591, 513}, {810091, 513}, {88582, 514},  {88592, 514},  {85922, 514},
    {88593, 515},  {88594, 516},  {88595, 517},  {88596, 518},  {88597, 519},  {88598, 520},
    {885910, 522}, {885911, 523}, {885913, 525}, {885914, 526}, {885915, 527}, {885916, 528},
    {88599, 521},  {89599, 521},
};

using enum NameTest;

/// 50 tests. UTF-7, which is not safe to read, is ASCII on purpose.
constexpr CharsetName Names[] = {
    {Begins, u"windows", 1280},
    {Begins, u"mac", MacScript},
    {Begins, u"xmac", MacScript},
    {Contains, u"latin10", 528},
    {Contains, u"latin1", 513},
    {Equals, u"latin", 513},
    {Contains, u"latin2", 514},
    {Contains, u"latin3", 515},
    {Contains, u"latin4", 516},
    {Contains, u"latin5", 521},
    {Contains, u"latin6", 522},
    {Contains, u"latin7", 525},
    {Contains, u"latin8", 526},
    {Contains, u"latin9", 527},
    {Equals, u"iso", 513},
    {Equals, u"visual", 520},
    {Equals, u"xkamcs", KamenickyTextEncoding},
    {Equals, u"kamcs", KamenickyTextEncoding},
    {Equals, u"kbkam", KamenickyTextEncoding},
    {Equals, u"koi8cs2", KOI8CS2TextEncoding},
    {Equals, u"csn369103", KOI8CS2TextEncoding},
    {Equals, u"usascii", ASCIITextEncoding},
    {Equals, u"ascii", ASCIITextEncoding},
    {Contains, u"utf7", ASCIITextEncoding},
    {Contains, u"gb2312", EUCCNTextEncoding},
    {Begins, u"gbk", 1585},
    {Contains, u"gb18030", 1586},
    {Equals, u"utf", UTF8TextEncoding},
    {Contains, u"utf8", UTF8TextEncoding},
    {Contains, u"utf08", UTF8TextEncoding},
    {Contains, u"uft8", UTF8TextEncoding},
    {Contains, u"utf2d8", UTF8TextEncoding},
    {Equals, u"utf9", UTF8TextEncoding},
    {Equals, u"unicode", UTF8TextEncoding},
    {Contains, u"utf16", UTF16TextEncoding},
    {Contains, u"shiftj", ShiftJISTextEncoding},
    {Contains, u"sjis", ShiftJISTextEncoding},
    {Begins, u"koi8", 2562},
    {Contains, u"big5", Big5TextEncoding},
    {Contains, u"euckr", 2368},
    {Contains, u"eucj", 2336},
    {Contains, u"euccn", EUCCNTextEncoding},
    {Contains, u"euctw", 2353},
    {Equals, u"ksc56011987", 1600},
    {Equals, u"ksc560187", 1600},
    {Begins, u"ksc560192", 1601},
    // Language codes where a charset belongs. Names of two units never come this far.
    {Equals, u"en", UTF8TextEncoding},
    {Equals, u"enus", UTF8TextEncoding},
    {Equals, u"engb", UTF8TextEncoding},
    {Equals, u"none", ASCIITextEncoding},
};

/// 44 names.
constexpr CharsetName MacScripts[] = {
    {Equals, u"roman", 0},          {Equals, u"osroman", 0},        {Equals, u"intosh", 0},
    {Equals, u"romanlatin1", 2564}, {Equals, u"cyrillic", 7},       {Equals, u"ce", 29},
    {Equals, u"japanese", 1},       {Contains, u"chinesetrad", 2},  {Equals, u"korean", 3},
    {Equals, u"arabic", 4},         {Equals, u"hebrew", 5},         {Equals, u"greek", 6},
    {Equals, u"devanagari", 9},     {Equals, u"gurmukhi", 10},      {Equals, u"gujarati", 11},
    {Equals, u"oriya", 12},         {Equals, u"bengali", 13},       {Equals, u"tamil", 14},
    {Equals, u"telugu", 15},        {Equals, u"kannada", 16},       {Equals, u"malayalam", 17},
    {Equals, u"sinhalese", 18},     {Equals, u"burmese", 19},       {Equals, u"khmer", 20},
    {Equals, u"thai", 21},          {Equals, u"laotian", 22},       {Equals, u"georgian", 23},
    {Equals, u"armenian", 24},      {Contains, u"chinesesimp", 25}, {Equals, u"tibetan", 26},
    {Equals, u"mongolian", 27},     {Equals, u"ethiopic", 28},      {Contains, u"centraleur", 29},
    {Equals, u"vietnamese", 30},    {Equals, u"extarabic", 31},     {Equals, u"turkish", 35},
    {Equals, u"croatian", 36},      {Equals, u"icelandic", 37},     {Equals, u"romanian", 38},
    {Equals, u"celtic", 39},        {Equals, u"gaelic", 40},        {Equals, u"farsi", 140},
    {Equals, u"ukrainian", 152},    {Equals, u"inuit", 236},
};

}  // namespace

std::span<const CharsetNumber> charsetNumbers() noexcept { return Numbers; }
std::span<const CharsetName> charsetNames() noexcept { return Names; }
std::span<const CharsetName> macScriptNames() noexcept { return MacScripts; }

}  // namespace velmo::detail
