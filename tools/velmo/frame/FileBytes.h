// The bytes of an input: a file, standard input for "-", or a page of the web for its address.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

#include <velmocore/platform/Bytes.h>

namespace velmo::tool {

/// An input cannot be used; what() tells why. The tool goes on with the next one.
class InputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The usual limit of what may come out of compressed bytes.
inline constexpr std::size_t UsualLimit = std::size_t{1} << 30;

/// All bytes of an input. Throws an InputError.
Data readFile(const std::string& name);
/// The first bytes of a file, no more than that many. Throws an InputError.
Data readHead(const std::string& name, std::size_t count);

/// Whether bytes begin as gzip does.
bool isGzip(Bytes bytes);
/// What gzip or zlib bytes hold: of gzip all members. Throws an InputError if they are damaged,
/// break off, are followed by something else than zeros, or hold more than the limit.
Data inflated(Bytes bytes, std::size_t limit);
/// As much of what gzip bytes hold, no more than that many and whatever comes behind.
Data inflatedHead(Bytes bytes, std::size_t count);

}  // namespace velmo::tool
