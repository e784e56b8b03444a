// The commands of the tool. Each adds itself to the parser and runs when it was chosen.
#pragma once

#include <CLI/CLI.hpp>

#include "Session.h"

namespace velmo::tool {

void addCharsetCommand(CLI::App& app, Session& session);
void addTextCommand(CLI::App& app, Session& session);
void addLinksCommand(CLI::App& app, Session& session);
void addWordsCommand(CLI::App& app, Session& session);
void addMatchCommand(CLI::App& app, Session& session);
void addFindCommand(CLI::App& app, Session& session);
void addQueryCommand(CLI::App& app, Session& session);
void addExcerptsCommand(CLI::App& app, Session& session);
void addLanguageCommand(CLI::App& app, Session& session);
void addLinesCommand(CLI::App& app, Session& session);
void addCleanCommand(CLI::App& app, Session& session);
void addDigestCommand(CLI::App& app, Session& session);
void addPackCommand(CLI::App& app, Session& session);
void addUnpackCommand(CLI::App& app, Session& session);
void addUrlCommand(CLI::App& app, Session& session);
void addMimeCommand(CLI::App& app, Session& session);
void addGatherCommand(CLI::App& app, Session& session);

/// In the order of the help.
inline constexpr void (*AllCommands[])(CLI::App&, Session&) = {
    addGatherCommand, addTextCommand,  addLinksCommand,  addCharsetCommand,  addWordsCommand,
    addMatchCommand,  addFindCommand,  addQueryCommand,  addExcerptsCommand, addLanguageCommand,
    addLinesCommand,  addCleanCommand, addDigestCommand, addPackCommand,     addUnpackCommand,
    addUrlCommand,    addMimeCommand,
};

}  // namespace velmo::tool
