#include <velmocore/platform/Path.h>

#include "platform/Surrogates.h"

namespace velmo {

Path::Path(Narrow path) {
    if (!path.bytes.data() || path.bytes.find('\0') != path.bytes.npos) return;
    bytes_ = path.bytes;
    isAbsent_ = false;
}

Path::Path(Utf16 path) {
    if (!path.units.data() || detail::hasLoneSurrogate(path.units)) return;
    *this = Path(Narrow{utf8(path.units)});
}

}  // namespace velmo
