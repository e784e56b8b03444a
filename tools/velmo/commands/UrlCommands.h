// The actions of "velmo url", and how they and "velmo mime" get what they work on.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>
#include <velmocore/url/URL.h>

#include "frame/Command.h"

namespace velmo::tool {

Command makeUrlAcceptCommand(Session& session);
Command makeUrlClassifyCommand(Session& session);
Command makeUrlHostCommand(Session& session);
Command makeUrlKeyCommand(Session& session);
Command makeUrlParamsCommand(Session& session);
Command makeUrlParseCommand(Session& session);
Command makeUrlPathCommand(Session& session);
Command makeUrlRepairCommand(Session& session);
Command makeUrlResolveCommand(Session& session);
Command makeUrlSimplifyCommand(Session& session);
Command makeUrlUnwrapCommand(Session& session);

/// Lets a command take its URLs as arguments or, without any, a line each from standard input.
void addUrlArguments(Command& command, std::vector<std::string>& urls,
                     std::string_view name = "URL");

/// --web: read URLs as browsers of today do.
Option webFlag(WebRules& web, std::string help);

/// The URL of a text without a base, as the rules read it: what people leave out is supplied, or
/// nothing is. Absent if it is none.
URL readURL(const String& text, WebRules web);

/// The text of that URL; a text that is none stays as it is.
String readText(const String& text, WebRules web);

/// Calls the work for each URL, as it is read; what it prints is written before the next one is
/// waited for. White space at the ends of a line is left out, and so are lines without anything
/// else.
void forEachUrl(Report& report, const std::vector<std::string>& urls,
                const std::function<void(const String& url)>& work);

}  // namespace velmo::tool
