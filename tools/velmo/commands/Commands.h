// The commands of the tool. Each makes itself, with its options, for one run.
#pragma once

#include <span>
#include <vector>

#include "frame/Command.h"

namespace velmo::tool {

/// In the order of the help.
const std::vector<CommandEntry>& allCommands();

Command makeBibCommand(Session& session);
Command makeCharsetCommand(Session& session);
Command makeCleanCommand(Session& session);
Command makeCommentsCommand(Session& session);
Command makeCompletionsCommand(Session& session);
Command makeDateCommand(Session& session);
Command makeDigestCommand(Session& session);
Command makeExcerptsCommand(Session& session);
Command makeFeedCommand(Session& session);
Command makeFetchCommand(Session& session);
Command makeFindCommand(Session& session);
Command makeFormCommand(Session& session);
Command makeGatherCommand(Session& session);
Command makeLanguageCommand(Session& session);
Command makeLinesCommand(Session& session);
Command makeLinksCommand(Session& session);
Command makeLocationCommand(Session& session);
Command makeManualCommand(Session& session);
Command makeMatchCommand(Session& session);
Command makeMetaCommand(Session& session);
Command makeMimeCommand(Session& session);
Command makePackCommand(Session& session);
Command makeQueryCommand(Session& session);
Command makeRecordsCommand(Session& session);
Command makeRobotsCommand(Session& session);
Command makeServeCommand(Session& session);
Command makeSearchCommand(Session& session);
Command makeSheetCommand(Session& session);
Command makeShowCommand(Session& session);
Command makeStripCommand(Session& session);
Command makeTextCommand(Session& session);
Command makeThumbsCommand(Session& session);
Command makeUnpackCommand(Session& session);
Command makeWordsCommand(Session& session);

/// The actions of "velmo archive".
std::span<const CommandEntry> archiveActions();
/// The actions of "velmo attributes".
std::span<const CommandEntry> attributeActions();
/// The actions of "velmo helper".
std::span<const CommandEntry> helperActions();
/// The actions of "velmo store".
std::span<const CommandEntry> storeActions();
/// The actions of "velmo url".
std::span<const CommandEntry> urlActions();

}  // namespace velmo::tool
