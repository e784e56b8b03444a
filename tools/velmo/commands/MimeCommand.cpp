// The library's tables of types and their kinds, seen from a shell. One argument is an extension
// or a type, told by its slash, as no extension has one. The names of the kinds are those of the
// library's predicates, and stay: programs read them.
#include <velmocore/url/FileKinds.h>
#include <velmocore/url/MIMETypes.h>

#include <memory>
#include <span>

#include "Commands.h"
#include "UrlCommands.h"

namespace velmo::tool {
namespace {

struct Kind {
    const char* name;
    bool (*isOf)(std::u16string_view);
};

// Parts of one predicate with options; a table of functions needs each with a name of its own.
bool isAudio(std::u16string_view extension) { return isMultimediaType(extension, {.audio = true}); }
bool isVideo(std::u16string_view extension) { return isMultimediaType(extension, {.video = true}); }
bool isEmbedded(std::u16string_view extension) {
    return isMultimediaType(extension, {.embedded = true});
}

constexpr Kind KindsOfExtensions[] = {
    {"image", isImageType},
    {"markup", isMarkupType},
    {"richText", isRichTextType},
    {"office", isOfficeType},
    {"executable", isExecutableType},
    {"archive", isArchiveType},
    {"multimedia", isMultimediaType},
    {"audio", isAudio},
    {"video", isVideo},
    {"embedded", isEmbedded},
    {"binary", isBinaryFileType},
};

/// Other kinds than those of extensions: what a server says of its answer, and what programs must
/// do with it, is told more finely than what a name ends with.
constexpr Kind KindsOfTypes[] = {
    {"markup", isMarkupMIMEType},
    {"html", isHTMLMIMEType},
    {"json", isJSONMIMEType},
    {"webArchive", isWebArchiveMIMEType},
    {"image", isImageMIMEType},
    {"text", isTextMIMEType},
    {"plainText", isPlainTextMIMEType},
    {"stylesheetOrScript", isStylesheetOrScriptMIMEType},
    {"rtf", isRTFMIMEType},
    {"pdf", isPDFMIMEType},
    {"postScript", isPostScriptMIMEType},
    {"msWord", isMSWordMIMEType},
    {"msPowerPoint", isMSPowerPointMIMEType},
    {"msExcel", isMSExcelMIMEType},
    {"msOffice", isMSOfficeMIMEType},
    {"openOffice", isOpenOfficeMIMEType},
    {"starOffice", isStarOfficeMIMEType},
    {"multimedia", isMultimediaMIMEType},
};

struct Answer {
    String type, extension;  ///< what was asked for and what it leads to
    bool isKnown;
    JsonArray kinds = {};
};

Answer answer(const String& asked) {
    const bool isType = asked.view().find(u'/') != std::u16string_view::npos;
    const String extension = asked.view().substr(asked.view().starts_with(u'.'));
    const String found = isType ? extensionForMIMEType(asked) : MIMETypeForExtension(extension);
    Answer answer{isType ? asked : found, isType ? found : extension, !found.isAbsent()};
    const auto kinds = isType ? std::span<const Kind>(KindsOfTypes) : KindsOfExtensions;
    for (const Kind& kind : kinds)
        if (kind.isOf(isType ? asked : extension)) answer.kinds.push_back(kind.name);
    return answer;
}

std::string lineOf(const String& part) { return part.isAbsent() ? "-" : part.utf8(); }

void run(Report& report, const std::vector<std::string>& names) {
    forEachUrl(report, names, [&](const String& asked) {
        const Answer found = answer(asked);
        // An extension may have kinds and no type, as kinds go by tables of their own. It is a
        // miss even so: what was asked for is the type.
        report.noteHit(found.isKnown);
        if (report.json())
            return report.printObject({{"asked", asked},
                                       {"type", found.type},
                                       {"extension", found.extension},
                                       {"kinds", found.kinds}});
        std::string line = lineOf(found.extension) + "  " + lineOf(found.type);
        for (const Json& kind : found.kinds) line += "  " + kind.plain();
        report.printLine(line);
    });
}

}  // namespace

Command makeMimeCommand(Session& session) {
    auto options = std::make_shared<std::vector<std::string>>();
    Command command = {
        .summary = "Tell the types of extensions, the extensions of types, and their kinds",
        .examples = {"velmo mime html image/jpeg"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addUrlArguments(command, *options, "EXT|TYPE");
    command.add({jsonFlag(session, "one JSON object an extension or type")});
    return command;
}

}  // namespace velmo::tool
