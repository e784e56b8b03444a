// velmo: the library from a shell.
#include <CLI/CLI.hpp>

#include <clocale>

#include "Commands.h"

namespace {

constexpr const char* Overview =
    "Examples:\n"
    "  velmo gather site/ --base https://example.org/ --query 'cat NEAR dog'\n"
    "  velmo text page.html --only-body\n"
    "  velmo links page.html --base https://example.org/page.html --json\n"
    "  velmo charset *.html\n"
    "  velmo words --list notes.txt\n"
    "  velmo match '(cat OR dog) -bird' notes.txt page.html\n"
    "  velmo excerpts 'cat* NEAR/5 dog' notes.txt page.html\n"
    "  velmo query --tree '(cat OR dog) -bird'\n"
    "  velmo find -r 'data* [a-d]?se' letters/\n"
    "  velmo url simplify https://www.example.org/index.html\n"
    "  velmo language *.html\n"
    "  velmo clean --unwrap --collapse mail.txt\n"
    "  velmo digest --sha1 *.html\n"
    "\n"
    "Reads pages and texts: charsets, plain text, links, words, languages and queries.\n"
    "FILE may be -, which is standard input.\n"
    "Exit codes: 0 done or a hit, 1 no hit, 2 an input failed or the usage was wrong.\n";

}  // namespace

int main(int argc, char** argv) {
    using namespace velmo::tool;

    CLI::App app(Overview);
    app.name("velmo");
    app.set_version_flag("--version", "velmo " VELMO_VERSION);
    app.require_subcommand(1);
    app.get_formatter()->column_width(34);

    Session session;
    for (const auto add : AllCommands) add(app, session);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help and version come this way too, with the code 0.
        return app.exit(error) == 0 ? int(Done) : int(Failure);
    }
    return session.exitCode();
}
