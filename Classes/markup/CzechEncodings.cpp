#include <velmocore/markup/CzechEncodings.h>

#include <velmocore/text/StringFiles.h>

namespace velmo {

String stringWithKamenickyData(Bytes data) { return stringWithData(data, KamenickyStringEncoding); }

String stringWithKoi8cs2Data(Bytes data) { return stringWithData(data, KOI8CS2StringEncoding); }

}  // namespace velmo
