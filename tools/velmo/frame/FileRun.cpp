// The frame around every command that reads files: it lists them, hands each to a thread, and
// turns what goes wrong with one into that file's failure, so that the others go on. A command
// brings only the work on one input.
#include "FileRun.h"

#include <fmt/core.h>

#include <new>

#include "FileBytes.h"
#include "Remote.h"

namespace velmo::tool {
namespace {

/// Whether a file that was found in a folder is left out: one that is no text. Its head tells,
/// so that large ones need not be read.
bool isLeftOut(const FileName& file, const ContentOptions& options) {
    if (file.wasNamed() || options.forced != Kind::Unclear) return false;
    Data head = readHead(file.path, ContentHeadSize);
    if (isGzip(head)) head = inflatedHead(head, ContentHeadSize);
    return contentKind(head, file.path) == Kind::Binary;
}

/// The bytes of an input. What the server of a page says of it counts where nobody knows better.
Data readInput(const std::string& name, ContentOptions& options) {
    if (!isRemote(name)) return readFile(name);
    RemoteFile file = readRemote(name);
    if (options.httpCharset.empty()) options.httpCharset = file.charset;
    if (file.isPage) options.unclear = Kind::Page;
    return std::move(file.bytes);
}

/// Does the work on one file; what keeps it from being done is the file's failure.
/// One input that is too large does not end the run: its memory is free again by then.
template <class Work>
void guard(const std::string& name, Report& report, Work work) {
    try {
        work();
    } catch (const InputError& error) {
        report.fail(name, error.what());
    } catch (const std::bad_alloc&) {
        report.fail(name, "not enough memory");
    }
}

}  // namespace

Option jobsOption(std::uint64_t& jobs) {
    Option option =
        number("-j,--jobs", "N", jobs, "how many threads work; the output stays in order", 1, 1024);
    option.usual = "as many as the machine has";  // the same text on any machine
    return option;
}

Option charsetOption(std::string& charset) {
    return {.names = "--charset",
            .value = "NAME",
            .help = "decode every file so, whatever it says itself",
            .take = [&charset](const std::string& name) {
                if (!isKnownCharset(name)) throw UsageError("unknown charset " + name);
                charset = name;
            }};
}

Option maxSizeOption(std::uint64_t& limit, std::string help) {
    return number("--max-size", "BYTES", limit, std::move(help));
}

void addFileOptions(Command& command, Session& session, InputOptions& options, std::string help) {
    NameOptions& names = options.names;
    command.arguments.push_back(list("FILE", names.paths, std::move(help)));
    command.add({
        flag("-r,--recursive", names.recursive, "all files in folders and below"),
        texts("--include", "PATTERN", names.include,
              "in folders only files with such a name; may be given again"),
        texts("--exclude", "PATTERN", names.exclude,
              "no files and no folders in folders with such a name; may be given again"),
        text("--files-from", "FILE", names.filesFrom,
             "read the names of the files from FILE, one a line; - is standard input"),
        {.names = "-0,--null",
         .value = {},
         .help = "names end with NUL: those read by --files-from, and those printed",
         .take = [&names, &session](const auto&) { names.hasNuls = session.printsNuls = true; }},
        jobsOption(options.jobs),
    });
}

void addContentOptions(Command& command, Session& session, InputOptions& options, Kind unclear) {
    ContentOptions& content = options.content;
    content.unclear = unclear;
    addFileOptions(command, session, options,
                   "pages and texts, told apart by their content; none, or -, is standard input");
    const auto force = [&content](Kind kind) {
        return [&content, kind](const std::string&) { content.forced = kind; };
    };
    command.add({
        {.names = "--page",
         .value = {},
         .help = "take every file for a page",
         .take = force(Kind::Page),
         .excludes = "--text"},
        {.names = "--text",
         .value = {},
         .help = "take every file for a text",
         .take = force(Kind::Text)},
        charsetOption(content.charset),
        text("--http-charset", "NAME", content.httpCharset,
             "the charset that the HTTP header of pages named"),
        {.names = "--web",
         .value = {},
         .help = "read pages, and the markup of feeds, as browsers of today do",
         .take = [&content](const std::string&) { content.web = WebRules::today(); }},
        maxSizeOption(content.limit, "most bytes that may come out of a compressed file"),
    });
}

std::size_t forEachName(Report& report, const InputOptions& options,
                        const std::function<void(const FileName&, Report&)>& work) {
    Session& session = report.session();
    const std::vector<FileName> files = listFiles(session, options.names);
    // Before any thread is made; all of them read it.
    session.hasSeveralInputs = files.size() > 1;
    runInOrder(session, files.size(), options.jobs, [&](std::size_t i, Report& own) {
        own.nameFile(files[i].path);
        guard(files[i].path, own, [&] { work(files[i], own); });
    });
    return files.size();
}

std::size_t forEachFile(Report& report, const InputOptions& options,
                        const std::function<void(const FileName&, Data&&, Report&)>& work) {
    return forEachName(report, options, [&](const FileName& file, Report& own) {
        work(file, readFile(file.path), own);
    });
}

std::size_t forEachContent(Report& report, const InputOptions& options,
                           const std::function<void(const FileName&, Content&&, Report&)>& work) {
    return forEachName(report, options, [&](const FileName& file, Report& own) {
        if (isLeftOut(file, options.content)) return;
        ContentOptions content = options.content;
        // What a folder happens to hold is not what the user called a page.
        if (!file.wasNamed()) content.unclear = Kind::Text;
        work(file, decode(readInput(file.path, content), file.path, content), own);
    });
}

std::size_t forEachText(
    Report& report, const InputOptions& options,
    const std::function<void(const std::string& name, String&& text, Report&)>& work) {
    return forEachContent(report, options,
                          [&](const FileName& file, Content&& content, Report& own) {
                              work(file.path, readableText(std::move(content)), own);
                          });
}

}  // namespace velmo::tool
