// The bodies of HTTP responses as an archive keeps them: in the codings of their transport.
#pragma once

#include <cstddef>
#include <optional>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/String.h>

namespace velmo::detail {

/// Chunks put together. Of what breaks off, that which is there; bytes that do not begin as a chunk
/// come back as they are, as many archives keep bodies without their chunks, but with the header.
Data dechunked(Data&& body);

/// A content coding undone, or several of a list: gzip, deflate and identity. Of what is damaged,
/// that which came out. None for a coding that is not known, if nothing came out, and if it is more
/// than that many bytes.
std::optional<Data> decodedBody(Data&& body, const String& contentEncoding, std::size_t mostBytes);

}  // namespace velmo::detail
