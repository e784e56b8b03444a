#include <velmocore/platform/Path.h>

#include <algorithm>

namespace velmo {
namespace {

bool hasLoneSurrogate(std::u16string_view units) {
    for (std::size_t i = 0; i < units.size(); ++i) {
        if ((units[i] & 0xF800) != 0xD800) continue;
        const bool isPair = (units[i] & 0xFC00) == 0xD800 && i + 1 < units.size() &&
                            (units[i + 1] & 0xFC00) == 0xDC00;
        if (!isPair) return true;
        ++i;
    }
    return false;
}

}  // namespace

Path::Path(Narrow path) {
    if (!path.bytes.data() || path.bytes.find('\0') != path.bytes.npos) return;
    bytes_ = path.bytes;
    isAbsent_ = false;
}

Path::Path(Utf16 path) {
    if (!path.units.data() || hasLoneSurrogate(path.units)) return;
    *this = Path(Narrow{utf8(path.units)});
}

}  // namespace velmo
