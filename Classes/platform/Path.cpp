#include <velmocore/platform/Path.h>

#include "platform/Surrogates.h"

namespace velmo {

Path::Path(Narrow path) {
    if (!path.bytes.data()) return;
    if (path.bytes.find('\0') != path.bytes.npos) {
        unusableText_ = String::fromUTF8(path.bytes);
        return;
    }
    bytes_ = path.bytes;
    isAbsent_ = false;
}

Path::Path(Utf16 path) {
    if (!path.units.data()) return;
    if (detail::hasLoneSurrogate(path.units))
        unusableText_ = String(path.units);
    else
        *this = Path(Narrow{utf8(path.units)});
}

}  // namespace velmo
