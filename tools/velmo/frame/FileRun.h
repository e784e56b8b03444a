// What all commands that read files have in common: which they read, what they take them for,
// and on how many threads.
#pragma once

#include <functional>
#include <string>

#include "Command.h"
#include "Content.h"
#include "FileNames.h"
#include "OrderedRun.h"

namespace velmo::tool {

struct InputOptions {
    NameOptions names;
    ContentOptions content;
    std::uint64_t jobs = defaultJobs();
};

/// Adds FILE... and the options that every command has that reads files: -r, --include,
/// --exclude, --files-from, -0 and -j.
void addFileOptions(Command& command, Session& session, InputOptions& options, std::string help);
/// The same for a command that reads pages and texts, with --page, --text, --charset and
/// --http-charset besides. What is unclear is a text, or for a command for pages a page if it
/// was named.
void addContentOptions(Command& command, Session& session, InputOptions& options,
                       Kind unclear = Kind::Text);

/// Options of these that other commands have too, under the same names.
Option jobsOption(std::uint64_t& jobs);
Option charsetOption(std::string& charset);
Option maxSizeOption(std::uint64_t& limit, std::string help);

/// Calls the work for each file, on several threads: it may use nothing but its arguments and what
/// any thread may read. The output is in the order of the files. A file that cannot be used, for
/// want of memory or because the work throws an InputError, is reported, and the others go on.
/// Gives the number of files.
std::size_t forEachName(Report& report, const InputOptions& options,
                        const std::function<void(const FileName&, Report&)>& work);

/// The same for the bytes of each file that can be read.
std::size_t forEachFile(Report& report, const InputOptions& options,
                        const std::function<void(const FileName&, Data&&, Report&)>& work);

/// The same for files as they are decoded. Binary files in folders are left out.
std::size_t forEachContent(Report& report, const InputOptions& options,
                           const std::function<void(const FileName&, Content&&, Report&)>& work);

/// The same for what there is to read in each.
std::size_t forEachText(
    Report& report, const InputOptions& options,
    const std::function<void(const std::string& name, String&& text, Report&)>& work);

}  // namespace velmo::tool
