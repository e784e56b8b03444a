// The table of commands: whoever adds one adds a row.
#include "Commands.h"

namespace velmo::tool {

const std::vector<CommandEntry>& allCommands() {
    // In the order of the help.
    static const std::vector<CommandEntry> commands = {
        {"gather", makeGatherCommand},
        {"search", makeSearchCommand},
        {"fetch", makeFetchCommand},
        {"robots", makeRobotsCommand},
        {"text", makeTextCommand},
        {"links", makeLinksCommand},
        {"feed", makeFeedCommand},
        {"thumbs", makeThumbsCommand},
        {"meta", makeMetaCommand},
        {"strip", makeStripCommand},
        {"charset", makeCharsetCommand},
        {"words", makeWordsCommand},
        {"match", makeMatchCommand},
        {"find", makeFindCommand},
        {"query", makeQueryCommand},
        {"excerpts", makeExcerptsCommand},
        {"language", makeLanguageCommand},
        {"lines", makeLinesCommand},
        {"clean", makeCleanCommand},
        {"digest", makeDigestCommand},
        {"pack", makePackCommand},
        {"unpack", makeUnpackCommand},
        {"archive", nullptr, archiveActions(), "Zip archives: create, extract and list them",
         "ARCHIVE"},
        {"url", nullptr, urlActions(), "Repair, resolve, simplify and judge URLs", "[URL...]"},
        {"mime", makeMimeCommand},
        {"form", makeFormCommand},
        {"date", makeDateCommand},
        {"sheet", makeSheetCommand},
        {"bib", makeBibCommand},
        {"records", makeRecordsCommand},
        {"comments", makeCommentsCommand},
        {"show", makeShowCommand},
        {"store", nullptr, storeActions(), "Files of blocks: list, append, check and mend them",
         "STORE"},
        {"attributes", nullptr, attributeActions(),
         "Extended attributes of files: values, tags, sources and comments", "PATH..."},
        {"location", makeLocationCommand},
        {"helper", nullptr, helperActions(),
         "Processes that serve operations under a name: serve, call and list them", "[NAME...]"},
        {"serve", makeServeCommand},
        {"completions", makeCompletionsCommand},
        {"manual", makeManualCommand},
    };
    return commands;
}

}  // namespace velmo::tool
