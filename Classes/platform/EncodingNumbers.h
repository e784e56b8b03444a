// Names for the numbers of text encodings that the library speaks of by itself. Those of the
// others stand in EncodingTables.cpp only.
#pragma once

#include <cstdint>

namespace velmo::detail::encoding {

using Number = std::uint32_t;

inline constexpr Number MacRoman = 0, MacJapanese = 1;
inline constexpr Number UTF16 = 256, UTF8 = 0x08000100;
inline constexpr Number ISOLatin1 = 513, ISOLatin2 = 514;
inline constexpr Number WindowsJapanese = 1056;
inline constexpr Number Windows1252 = 1280, Windows1250 = 1281, Windows1251 = 1282,
                        Windows1253 = 1283, Windows1254 = 1284;
inline constexpr Number ASCII = 1536;
// The bare sets of the Japanese standards have no converter.
inline constexpr Number JISX0201 = 1568, JISX0208of83 = 1569, JISX0208of90 = 1570, JISX0212 = 1571,
                        JISC6226 = 1572;
inline constexpr Number ShiftJISX0213 = 1576, ShiftJIS = 2561;
inline constexpr Number GB2312 = 1584, GBK = 1585, HZ = 2565;
inline constexpr Number ISO2022JP = 2080, ISO2022JP2 = 2081, ISO2022JP1 = 2082, ISO2022JP3 = 2083;
inline constexpr Number EUCJP = 2336, EUCTW = 2353;
inline constexpr Number Big5 = 2563, Big5HKSCS = 2566, Big5E = 2569;

}  // namespace velmo::detail::encoding
