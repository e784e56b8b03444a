#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/query/QueryTerms.h>

#include <memory>

#include "Commands.h"
#include "Input.h"

namespace velmo::tool {
namespace {

struct Options {
    std::string query;
    std::vector<std::string> files;
    bool caseSensitive = false;
    bool contains = false;
};

void run(Session& session, const Options& options) {
    const QueryTerms terms(String::fromUTF8(options.query));
    forEachFile(session, options.files, [&](const std::string& file, const std::string& bytes) {
        const String content = readableText(file, bytes);
        const bool matches = options.contains ? terms.containsString(content, options.caseSensitive)
                                              : terms.matchesString(content, options.caseSensitive);
        session.noteHit(matches);
        if (session.json)
            session.printObject({{"file", text(file)}, {"matches", matches}});
        else
            session.printLine(fmt::format("{}: {}", file, matches ? "match" : "no match"));
    });
}

}  // namespace

void addMatchCommand(CLI::App& app, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand(
        "match",
        "Example: velmo match '(cat OR dog) NEAR/5 house' notes.txt page.html\n"
        "         velmo match -- '-bird' notes.txt    (-- before a query that begins with -)\n"
        "Tell whether a query holds for texts and pages");
    command
        ->add_option("QUERY", options->query,
                     "words, \"phrases\", AND OR XOR NEAR/n NEXT BEFORE AFTER OPT, -not, ()")
        ->required();
    command->add_option("FILE", options->files, "UTF-8 texts, or pages by their extension")
        ->required();
    command->add_flag("--case-sensitive", options->caseSensitive, "upper and lower case differ");
    command->add_flag("--contains", options->contains, "only ask whether a positive word occurs");
    command->add_flag("--json", session.json, "one JSON object a file");
    command->callback([&session, options] { run(session, *options); });
}

}  // namespace velmo::tool
