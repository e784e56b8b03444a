// What an input says: pages and texts told apart and decoded, as the command line will have it.
#pragma once

#include <cstdint>
#include <string>

#include <velmocore/markup/ContentKinds.h>
#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>

#include "FileBytes.h"

namespace velmo::tool {

using Kind = ContentKind;

/// How inputs are taken, where the command line overrules what their content says.
struct ContentOptions {
    Kind forced = Kind::Unclear;  ///< by --page and --text
    /// What an input is that neither its content nor its name tells.
    Kind unclear = Kind::Text;
    std::string charset;               ///< by --charset; empty is none
    std::string httpCharset;           ///< the charset that the HTTP header named; empty if none
    WebRules web = {};                 ///< by --web: how pages are read
    std::uint64_t limit = UsualLimit;  ///< of what may come out of compressed bytes
    bool keepsUTF8 = false;            ///< whether pages in UTF-8 stay in it, where they may
};

/// An input that was decoded.
struct Content {
    Kind kind;             ///< Page or Text
    String units;          ///< a page with its markup, or a text
    std::string encoding;  ///< IANA name in lower case
    String declared;       ///< IANA name of the charset that a page names, or absent
    WebRules web = {};     ///< how a page is read further
    Data utf8 = {};        ///< instead of the units, if that was asked for
};

/// Decodes what was read from a file, gzip or not, as decodeContent() does, and forgets the bytes.
/// Throws an InputError.
Content decode(Data&& bytes, const std::string& name, const ContentOptions& options);

/// What there is to read: the plain text of a page, or the text itself. Forgets the content.
String readableText(Content&& content);

/// Whether a charset of that name is known.
bool isKnownCharset(const std::string& name);

/// A text on one line: white space at its ends is cut, and each run of it becomes a space.
String singleLine(const String& string);

}  // namespace velmo::tool
