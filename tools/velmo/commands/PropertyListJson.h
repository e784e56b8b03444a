// Property lists as the tool shows them.
#pragma once

#include <string_view>

#include <velmocore/platform/PropertyList.h>

#include "frame/Report.h"

namespace velmo::tool {

/// Bytes as base64, dates in ISO 8601, null for what is absent.
Json jsonOfPropertyList(const PropertyList& list);

/// "string", "integer", "real", "bool", "date", "data", "array", "dictionary" or "none".
std::string_view typeOfPropertyList(const PropertyList& list);

/// For people: bytes and strings as they are, anything else as JSON on one line.
void printPropertyList(Report& report, const PropertyList& list);

}  // namespace velmo::tool
