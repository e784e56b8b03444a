// Bytes as a location file: a property list, or with the first byte odd the text of a shortcut.
#include <velmocore/storage/InternetLocations.h>

#include "Input.h"

using namespace velmo;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const bool isShortcut = size > 0 && (data[0] & 1);
    const Bytes bytes = Bytes(data, size).subspan(isShortcut ? 1 : 0);
    const InternetLocation found =
        resolveInternetLocationData({bytes, isShortcut ? u"url" : u"webloc"});
    require(found || found.name.isAbsent());
    require(!isShortcut || (found.name.isAbsent() && found.url.length() <= bytes.size()));
    require(!isShortcut || found.url.view().find(u'\n') == std::u16string_view::npos);
    require(!resolveInternetLocationData({bytes, u"txt"}));
    pathExtensionForInternetLocation(found.url);
    return 0;
}
