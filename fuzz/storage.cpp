// Bytes as a compressed stream and as base64; and packed, which must come back.
#include <velmocore/storage/Base64.h>
#include <velmocore/storage/Compression.h>

#include "Input.h"

using namespace velmo;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t Limit = 1 << 20;
    const Bytes bytes(data, size);
    if (const auto inflated = dataByInflatingData(bytes, Limit)) require(inflated->size() <= Limit);
    const String text = fuzz::unitsOf(data, size);
    decodebase64UsingEncoding(text, ISOLatin1StringEncoding);
    if (size == 0) return 0;
    const Data original(bytes.begin(), bytes.end());
    require(dataByInflatingData(*dataByCompressingBytes(bytes, data[0] % 12, data[0] & 1)) ==
            original);
    require(decodedBase64Data(encodedBase64Data(bytes)) == original);
    require(isBase64String(encodedBase64Data(bytes)));
    return 0;
}
