// The manual: hand-written texts, which stand in manual/, and pages made of them and of what the
// commands say of themselves.
//
// A text is read as it stands by "velmo help", so it is plain: lines of at most 96 columns. Man pages
// are filled by these rules:
//
//     HEADING              capitals alone on a line, behind a blank one or at the start
//     A paragraph          ends at a blank line
//         an example       four spaces: kept as it is
//     TERM                 what the next lines explain
//       two spaces         the explanation
//
// In manual/commands the part under "JSON", or "ACTION JSON", has a row for each member of the
// JSON: its name, with that of the object around it, as links.url, and behind two spaces what it
// holds. * is a name that the input has made. A row of other words is a remark.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Command.h"

namespace velmo::tool {

struct ManualText {
    std::string_view name;  ///< its path in manual/, as topics/json
    std::string_view text;
};

/// All of them, sorted by name.
std::span<const ManualText> manualTexts();
/// The text of that name; empty if there is none.
std::string_view manualText(std::string_view name);

/// A topic of "velmo help".
struct Topic {
    std::string_view name, summary;
    std::string_view text;  ///< with the summary as its first line
};
const std::vector<Topic>& allTopics();
/// Null if there is none of that name.
const Topic* topicNamed(std::string_view name);

/// What stands under one heading; the heading is empty for what stands above all.
struct ManualPart {
    std::string_view heading;
    std::string_view text;
};
std::vector<ManualPart> partsOf(std::string_view text);

/// A member of the JSON of a command, or a remark, which has no name.
struct JsonMember {
    std::string name, meaning;
};
std::vector<JsonMember> jsonMembersOf(std::string_view text);

/// A man page: its name, as velmo-text, its section, and its text for groff.
struct ManualPage {
    std::string name;
    char section;
    std::string text;
};

/// All pages: the overview first, then those of the commands and of the topics.
std::vector<ManualPage> manualPages(std::span<const CommandEntry> commands, Session& session);

}  // namespace velmo::tool
