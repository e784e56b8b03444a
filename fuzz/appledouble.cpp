// Bytes as an AppleDouble file, and what stands in its fork: all of it within the bytes.
#include <velmocore/storage/InternetLocations.h>
#include <velmocore/storage/KeyedData.h>

#include "Input.h"
#include "storage/AppleDouble.h"
#include "storage/ResourceFork.h"

using namespace velmo;
using fuzz::require;

namespace {

void requireWithin(Bytes part, Bytes whole) {
    if (part.empty()) return;
    require(part.data() >= whole.data() &&
            part.data() + part.size() <= whole.data() + whole.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes bytes(data, size);
    const detail::AppleDouble parts = detail::appleDouble(bytes);
    requireWithin(parts.finderInfo, bytes);
    requireWithin(parts.resourceFork, bytes);
    for (const std::uint32_t type : {keyOfCode("url "), keyOfCode("TEXT"), std::uint32_t{0}})
        for (const Bytes fork : {parts.resourceFork, bytes})
            if (const auto resource = detail::firstResource(fork, type))
                requireWithin(*resource, fork);
    const InternetLocation found = resolveInternetLocationData({{}, u"webloc", bytes});
    require(found.url.length() <= size && found.name.isAbsent());
    resolveInternetLocationData({bytes, u"txt", bytes});
    return 0;
}
