// The subcommands of "velmo url", and how they get the URLs to work on. Each adds itself to
// the parser of the parent command, with options of its own.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <string>
#include <vector>

#include <velmocore/platform/String.h>

#include "Session.h"

namespace velmo::tool {

void addUrlResolveCommand(CLI::App& url, Session& session);
void addUrlSimplifyCommand(CLI::App& url, Session& session);
void addUrlParseCommand(CLI::App& url, Session& session);
void addUrlPathCommand(CLI::App& url, Session& session);
void addUrlParamsCommand(CLI::App& url, Session& session);
void addUrlAcceptCommand(CLI::App& url, Session& session);
void addUrlUnwrapCommand(CLI::App& url, Session& session);
void addUrlClassifyCommand(CLI::App& url, Session& session);
void addUrlRepairCommand(CLI::App& url, Session& session);

/// In the order of the help.
inline constexpr void (*UrlCommands[])(CLI::App&, Session&) = {
    addUrlResolveCommand, addUrlSimplifyCommand, addUrlParseCommand,
    addUrlPathCommand,    addUrlParamsCommand,   addUrlAcceptCommand,
    addUrlUnwrapCommand,  addUrlClassifyCommand, addUrlRepairCommand,
};

/// Lets a subcommand take its URLs as arguments or, without any, a line each from standard
/// input.
void addUrlArguments(CLI::App& command, std::vector<std::string>& urls,
                     const std::string& name = "URL");

/// Calls the work for each URL, as it is read. White space at the ends of a line is left
/// out, and so are lines without anything else.
void forEachUrl(const std::vector<std::string>& urls,
                const std::function<void(const String& url)>& work);

}  // namespace velmo::tool
