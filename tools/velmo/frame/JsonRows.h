// Rows of fields out of JSON.
#pragma once

#include <istream>
#include <string>
#include <vector>

#include <velmocore/platform/FunctionRef.h>
#include <velmocore/platform/String.h>

namespace velmo::tool {

/// Calls the handler with each array of texts, numbers and the like, wherever it stands in the
/// values of the stream, of which there may be any number. Null is an empty field. Values are not
/// kept, so there is no limit to their size. Gives the reason if the stream cannot be understood
/// to its end, else nothing.
std::string forEachJsonRow(std::istream& stream,
                           FunctionRef<void(const std::vector<String>& row)> handler);

}  // namespace velmo::tool
