// The folder of the sockets by which helpers are found: one file a registered name, only for this
// user.
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

#include "system/Bus.h"

namespace velmo::detail {

/// The file of a registered name: letters, digits, '-', '_' and inner dots as they are, every other
/// UTF-16 unit as %XXXX, so that no name leads out of the folder and no two have one file. A long
/// name is cut and a digest stands for the rest of it, behind a '~'.
VELMO_API std::string fileOfRegisteredName(std::u16string_view name);
/// And back; the file's own name if it was cut. Absent for a file that no name has.
VELMO_API String registeredNameOfFile(std::string_view file);

/// The folder, opened. It is looked at once and reached by its descriptor from then on, so that
/// nobody can put another one in its place.
class VELMO_API ConnectionFolder {
public:
    /// "velmo" in XDG_RUNTIME_DIR, or "velmo-UID" in the folder for temporary files if there is no
    /// such; made if need be. Absent if that cannot be or if it is open to others.
    static std::optional<ConnectionFolder> open(Error* error = nullptr);

    /// A socket that listens under the name; its file is remembered for withdraw(). A file that a
    /// killed helper left is replaced; no descriptor if a living one has it.
    Descriptor publish(const std::string& file, Error* error);
    /// Removes the file if it is still the published one.
    void withdraw(const std::string& file);

    /// A socket connected to whoever listens there; no descriptor, and 0, if nobody does, or an
    /// errno for other failures. What a killed helper left is removed.
    Descriptor connect(const std::string& file, int& failure) const;
    /// The files of those who listen.
    std::vector<std::string> files() const;

private:
    explicit ConnectionFolder(Descriptor folder) noexcept : folder_(std::move(folder)) {}
    Descriptor bindAndListen(const std::string& file) const;

    Descriptor folder_;
    struct stat published_ = {};
};

}  // namespace velmo::detail
