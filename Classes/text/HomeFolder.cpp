// HOME goes first, as shells and tests set it; the account's own folder is for programs that were
// started without an environment. A path that is not absolute would depend on where the program
// was started, and counts as none.
#include "text/HomeFolder.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "text/PathParts.h"

namespace velmo {
namespace {

String accountHome() {
    passwd account;
    passwd* found = nullptr;
    // Bytes for the entry's strings; an entry that needs more is as good as none.
    std::array<char, 4096> buffer;
    getpwuid_r(getuid(), &account, buffer.data(), buffer.size(), &found);
    return found && found->pw_dir ? detail::absoluteFolder(found->pw_dir) : String();
}

}  // namespace

String detail::absoluteFolder(std::string_view path) {
    if (!path.starts_with('/')) return {};
    return String(detail::withoutTrailingSlashes(String::fromUTF8(path)));
}

String detail::folderOfVariable(EnvironmentVariable variable, const char* name) {
    const char* value = variable(name);
    return value ? absoluteFolder(value) : String();
}

String detail::homeFolderOf(EnvironmentVariable variable) {
    String home = folderOfVariable(variable, "HOME");
    if (home.isAbsent()) home = accountHome();
    return home.isAbsent() ? String(u"/") : home;
}

const String& homeDirectory() {
    // Never freed, so that threads which outlive main() may still ask.
    static const auto& home =
        *new String(detail::homeFolderOf([](const char* name) { return std::getenv(name); }));
    return home;
}

}  // namespace velmo
