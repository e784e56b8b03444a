#include <velmocore/markup/PlainText.h>

#include <memory>

#include "Commands.h"
#include "Input.h"

namespace velmo::tool {
namespace {

struct Options {
    std::vector<std::string> files;
    PageOptions page;
    PlainTextOptions plainText;
};

void run(Session& session, const Options& options) {
    forEachFile(session, options.files, [&](const std::string& file, const std::string& bytes) {
        const String plain = stringByConvertingHtml2PlainText(decodePage(bytes, options.page).units,
                                                              options.plainText);
        if (session.json)
            session.printObject({{"file", text(file)}, {"text", text(plain)}});
        else
            session.printLine(plain.utf8());
    });
}

}  // namespace

void addTextCommand(CLI::App& app, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("text",
                                           "Example: velmo text --only-body --json page.html\n"
                                           "Turn pages into plain text");
    PlainTextOptions& plainText = options->plainText;
    command->add_option("FILE", options->files, "pages")->required();
    command->add_flag("--only-body", plainText.onlyBody, "leave out what is outside the body");
    command->add_flag("--reformat", plainText.reformat,
                      "join soft-wrapped lines of preformatted text");
    command->add_flag("--remove-junk", plainText.removeJunk,
                      "drop titles, hidden text and endless runs");
    command->add_flag("--google-tags", plainText.googleTags,
                      "honour googleoff: and googleon: comments");
    command->add_flag("!--no-image-alts", plainText.imageAlts, "leave out the texts of images");
    command->add_option("--http-charset", options->page.httpCharset,
                        "the charset that the HTTP header named");
    command->add_flag("--json", session.json, "one JSON object a page");
    command->callback([&session, options] { run(session, *options); });
}

}  // namespace velmo::tool
