// Pages as plain text, with the options of the conversion as flags of their own, each off or on as
// in the library. A text passes through unchanged, so that a mixed folder can be read whole.
#include <velmocore/markup/PlainText.h>

#include <memory>

#include "Commands.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

struct Options {
    InputOptions input;
    PlainTextOptions plainText;
};

String plainTextOf(Content&& content, PlainTextOptions options) {
    options.web = content.web;
    // Moved, so that the page is forgotten here and not kept while its text is printed.
    const String units = std::move(content.units);
    return content.kind == Kind::Page ? stringByConvertingHtml2PlainText(units, options) : units;
}

void run(Report& report, const Options& options) {
    forEachContent(report, options.input,
                   [&](const FileName& file, Content&& content, Report& own) {
                       const String text = plainTextOf(std::move(content), options.plainText);
                       if (own.json())
                           return own.printObject(fileObject(file.path, {{"text", text}}));
                       own.printHeading(file.path);
                       own.printText(text);
                   });
}

}  // namespace

Command makeTextCommand(Session& session) {
    auto options = std::make_shared<Options>();
    PlainTextOptions& plainText = options->plainText;
    Command command = {
        .summary = "Turn pages into plain text",
        .examples = {"velmo text --only-body --json page.html"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addContentOptions(command, session, options->input, Kind::Page);
    command.add({
        flag("--only-body", plainText.onlyBody, "leave out what is outside the body"),
        flag("--reformat", plainText.reformat, "join soft-wrapped lines of preformatted text"),
        flag("--remove-junk", plainText.removeJunk, "drop titles, hidden text and endless runs"),
        flag("--google-tags", plainText.googleTags, "honour googleoff: and googleon: comments"),
        offFlag("--no-image-alts", plainText.imageAlts, "leave out the texts of images"),
        flag("--noscript", plainText.noScripts, "take what is there for browsers without scripts"),
        flag("--textareas", plainText.textareas, "take the contents of text areas"),
        offFlag("--no-ruby", plainText.rubyText, "leave out how characters are read"),
        flag("--tabs", plainText.tabs, "write tabs between the cells of tables"),
        jsonFlag(session, "one JSON object a page"),
    });
    return command;
}

}  // namespace velmo::tool
