#include <memory>

#include "Commands.h"
#include "Input.h"

namespace velmo::tool {
namespace {

struct Options {
    std::vector<std::string> files;
    PageOptions page;
};

void run(Session& session, const Options& options) {
    forEachFile(session, options.files, [&](const std::string& file, const std::string& bytes) {
        const Page page = decodePage(bytes, options.page);
        if (session.json)
            return session.printObject(
                {{"file", text(file)}, {"encoding", page.encoding}, {"declared", page.declared}});
        session.printLine(fmt::format("{}: {} ({})", file, page.encoding,
                                      page.declared.is_null()
                                          ? "none declared"
                                          : "declared " + page.declared.get<std::string>()));
    });
}

}  // namespace

void addCharsetCommand(CLI::App& app, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command =
        app.add_subcommand("charset",
                           "Example: velmo charset --http-charset koi8-r page.html\n"
                           "Tell the charset that a page is decoded with, and the one it names");
    command->add_option("FILE", options->files, "pages")->required();
    command->add_option("--http-charset", options->page.httpCharset,
                        "the charset that the HTTP header named");
    command->add_flag("--json", session.json, "one JSON object a page");
    command->callback([&session, options] { run(session, *options); });
}

}  // namespace velmo::tool
