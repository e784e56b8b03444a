// Which files a command reads: the names that were given, and those in folders.
#pragma once

#include <string>
#include <vector>

#include "Session.h"

namespace velmo::tool {

/// How names are collected.
struct NameOptions {
    std::vector<std::string> paths;
    std::string filesFrom;  ///< a file with more names; empty is none
    bool hasNuls = false;   ///< whose names end with NUL and not with a line end
    bool recursive = false;
    std::vector<std::string> include, exclude;  ///< patterns for names in folders
};

struct FileName {
    std::string path;
    /// The folder that was named, if the file was found in one.
    std::string folder = {};

    bool wasNamed() const { return folder.empty(); }
};

/// The files to read, in the order of the names. Folders are walked if recursive is set, each
/// sorted by name; links in them are not followed, and what is no regular file there is left
/// out. Without any name it is the current folder if recursive is set, else standard input.
/// What cannot be listed is told the session, and the others are.
std::vector<FileName> listFiles(Session& session, const NameOptions& options);

}  // namespace velmo::tool
