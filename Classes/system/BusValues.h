// Property lists as values of the bus protocol and back.
//
//     value            on the bus
//     absent           g, an empty signature
//     bool             b
//     integer          x; every other integer type is read too
//     real             d
//     date             (d), seconds since 1970
//     text             s, or aq (its UTF-16 units) if it is long or holds a NUL or a lone
//                      surrogate
//     bytes            ay
//     array            av
//     dictionary       a{sv}, or a(vv) where a key is no s
#pragma once

#include <systemd/sd-bus.h>

#include <cstddef>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/PropertyList.h>

namespace velmo::detail {

/// Lists within lists deeper than this are refused: the bus library takes 128 levels in all, of
/// which a dictionary's value needs three.
inline constexpr int DeepestValue = 32;
/// What a message may hold, in bytes: the arguments are one array, of which the protocol has none
/// above 64 MB.
inline constexpr std::size_t LargestMessage = 60 << 20;

/// Appends the values as one array of variants, or one value as a variant. 0, or a negative errno:
/// -EMSGSIZE for what is too large and -ELOOP for what is too deep.
VELMO_API int appendArguments(sd_bus_message* message, const PropertyListArray& values);
VELMO_API int appendResult(sd_bus_message* message, const PropertyList& value);

/// Reads them. 0, or a negative errno for bytes that are no such value.
VELMO_API int readArguments(sd_bus_message* message, PropertyListArray& values);
VELMO_API int readResult(sd_bus_message* message, PropertyList& value);

}  // namespace velmo::detail
