#include <velmocore/Version.h>

namespace velmo {

Version linkedVersion() noexcept { return HeaderVersion; }
std::string_view linkedVersionText() noexcept { return VELMO_VERSION_TEXT; }

}  // namespace velmo
