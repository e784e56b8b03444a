// Reading what the commands work on.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <velmocore/platform/String.h>

#include "Session.h"

namespace velmo::tool {

/// How pages are decoded.
struct PageOptions {
    std::string httpCharset;  ///< the charset that the HTTP header named; empty if none
};

/// A page with what is known of its bytes.
struct Page {
    String units;
    std::string encoding;  ///< IANA name in lower case
    Json declared;         ///< IANA name of the charset that the page names, or null
};

/// The bytes of a file, or of standard input for "-". Tells the session what went wrong
/// and gives nothing if it cannot be read.
std::optional<std::string> readFile(Session& session, const std::string& file);
/// The same for any thread; gives the reason to the caller.
std::optional<std::string> readFile(const std::string& file, std::string& reason);

Page decodePage(const std::string& bytes, const PageOptions& options);

/// What there is to read in a file: the plain text of a page, or UTF-8 text as it is. A
/// page is told by its extension; standard input by its looks.
String readableText(const std::string& file, const std::string& bytes);

/// A text on one line: white space at its ends cut, and each run of it made one blank.
String singleLine(const String& string);

/// Reads each file, in order, and calls the work for those that could be read.
void forEachFile(
    Session& session, const std::vector<std::string>& files,
    const std::function<void(const std::string& file, const std::string& bytes)>& work);

}  // namespace velmo::tool
