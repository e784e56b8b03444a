// Inputs that are not files but pages of the web.
#pragma once

#include <string>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/String.h>

namespace velmo::tool {

/// Whether the name of an input is an address: it begins with http:// or https://. A file with
/// such a name is reached by ./ in front of it.
bool isRemote(const std::string& name);

/// A page as its server gave it.
struct RemoteFile {
    Data bytes;
    std::string charset;  ///< that the header names; empty if none
    bool isPage;          ///< whether the header says so
};

/// Downloads an input. Throws an InputError if it cannot be had, and if the environment has
/// VELMO_NO_NETWORK set.
RemoteFile readRemote(const std::string& name);

/// Throws an InputError if nothing is to be downloaded.
void requireNetwork();

/// Why a status is no success, as "HTTP status 404"; empty if it is one.
std::string statusComplaint(std::int64_t status);

}  // namespace velmo::tool
