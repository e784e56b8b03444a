// Files that the tool makes: whole, or not there at all.
#pragma once

#include <optional>
#include <string>

#include <velmocore/platform/Bytes.h>

namespace velmo::tool {

/// Makes a file of these bytes. They are written to a nameless file in the same folder, or where
/// there is no such thing to one with a name that nobody has; it gets the final name when all of
/// it has been written, so that a program that is killed leaves nothing under it. A file that is
/// there already is an error unless it is to be replaced; a replaced one keeps its mode, and if
/// the name is a link, the file that it leads to is replaced. A new file gets the mode of the file
/// that it was made from, if one is named. Throws an InputError.
void writeNewFile(const std::string& name, Bytes bytes, bool replace,
                  const std::string& madeFrom = {});

}  // namespace velmo::tool
