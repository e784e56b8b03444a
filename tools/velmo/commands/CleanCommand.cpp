// Each flag is a step; the steps are done in the order in which the flags were given, on one
// buffer or piece by piece, so that a large text stands in memory once.
//
// The order is the user's because it matters: white space that is collapsed before a mail is
// unwrapped would take the line breaks with it that tell where its paragraphs end.
#include <memory>

#include <velmocore/platform/Memory.h>
#include <velmocore/text/Collapsing.h>
#include <velmocore/text/Normalisation.h>
#include <velmocore/text/Reformatting.h>
#include <velmocore/text/Tabs.h>
#include <velmocore/text/Trimming.h>

#include "Commands.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

using Step = std::function<void(std::u16string& text)>;

struct Options {
    InputOptions input;
    std::vector<Step> steps;
};

constexpr std::string_view FormNames[] = {"c", "d", "kc", "kd"};
constexpr NormalizationForm Forms[] = {NormalizationForm::C, NormalizationForm::D,
                                       NormalizationForm::KC, NormalizationForm::KD};
/// In columns. A tab becomes as many spaces at most, so this bounds how much a text can grow.
constexpr std::uint64_t WidestTabs = 1000;
/// Of large texts so much is worked on at a time.
constexpr std::size_t PieceUnits = std::size_t{1} << 20;

/// In place: the end is cut first, so that less is moved to the front.
void trim(std::u16string& text) {
    const Range kept = trimSpacesInRange(text, {0, text.size()}, true);
    text.erase(kept.end());
    text.erase(0, kept.location);
}

/// A text of its own for the steps; the units of a large one move over piece by piece.
std::u16string takeUnits(String&& string) {
    const String owned = std::exchange(string, String());
    // The room is reserved at once, and the system backs it page by page as it is written, while
    // the pages that have been read go back: both together are never much more than one text.
    std::u16string units;
    units.reserve(owned.length());
    for (std::u16string_view rest = owned; !rest.empty();) {
        const std::u16string_view piece = rest.substr(0, PieceUnits);
        units += piece;
        giveBack(piece.data(), piece.size() * sizeof(char16_t));
        rest.remove_prefix(piece.size());
    }
    return units;
}

bool isAsciiLetter(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

/// The end of the first piece of a text: a line feed with a letter after it, so that no run of
/// white space and nothing that a normalisation joins is cut.
std::size_t endOfPiece(std::u16string_view text) {
    for (std::size_t at = PieceUnits; at < text.size(); ++at)
        if (text[at - 1] == u'\n' && isAsciiLetter(text[at])) return at;
    // A text without such a place, as one long line, is one piece: it takes more memory, but is
    // right.
    return text.size();
}

/// A step that makes a new text, piece by piece, so that a large one stands in memory once.
Step inPieces(Step change) {
    return [change = std::move(change)](std::u16string& text) {
        std::u16string changed;
        changed.reserve(text.size());
        for (std::u16string_view rest = text; !rest.empty();) {
            std::u16string piece(rest.substr(0, endOfPiece(rest)));
            giveBack(rest.data(), piece.size() * sizeof(char16_t));
            rest.remove_prefix(piece.size());
            change(piece);
            changed += piece;
        }
        text = std::move(changed);
    };
}

/// Without a copy of the text.
JsonObject objectOf(const std::string& file, std::u16string&& text) {
    JsonObject object = fileObject(file);
    object.push_back({"text", std::move(text)});
    return object;
}

void run(Report& report, const Options& options) {
    forEachText(report, options.input, [&](const std::string& file, String&& content, Report& own) {
        std::u16string units = takeUnits(std::move(content));
        for (const Step& step : options.steps) step(units);
        if (own.json())
            own.printObject(objectOf(file, std::move(units)));
        else
            own.printText(units);
    });
}

/// A flag that may be given more than once, as the same step may be wanted before and after
/// another.
Option stepFlag(std::vector<Step>& steps, std::string_view name, std::string help, Step step) {
    return {
        .names = name, .value = {}, .help = std::move(help), .take = [&steps, step](const auto&) {
            steps.push_back(step);
        }};
}

std::vector<Option> stepOptions(std::vector<Step>& steps) {
    return {
        stepFlag(steps, "--trim", "cut spaces and line ends off both ends", trim),
        stepFlag(steps, "--collapse", "make each run of white space one space",
                 inPieces([](std::u16string& text) { removeMultipleWhiteSpaces(text); })),
        stepFlag(steps, "--feeds", "make each run of line ends one line end",
                 inPieces(removeMultipleFeeds)),
        stepFlag(steps, "--ligatures", "write Latin ligatures as letters",
                 convertLigaturesToCharacters),
        stepFlag(steps, "--unwrap", "join the lines of a mail's paragraphs", reformatMailing),
        {.names = "--normalize",
         .value = "FORM",
         .help = "normalise to form c, d, kc or kd",
         .take =
             [&steps](const std::string& name) {
                 const NormalizationForm form = Forms[indexOfName(name, FormNames)];
                 steps.push_back(
                     inPieces([form](std::u16string& text) { normalizeString(text, form); }));
             },
         .choices = {std::begin(FormNames), std::end(FormNames)}},
        {"--expand-tabs", "N", "replace tabs by spaces, in columns of N",
         [&steps](const std::string& given) {
             std::uint64_t width = 0;
             // The check of values is that of all options; only the place of the step is the
             // command's own.
             number("--expand-tabs", "N", width, "", 1, WidestTabs).take(given);
             steps.push_back([width](std::u16string& text) { decodeTabs(text, width); });
         }},
    };
}

}  // namespace

Command makeCleanCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Clean texts and pages, step by step as the flags say",
        .examples = {"velmo clean --unwrap --collapse mail.txt"},
        .run = [options](Report& report) { run(report, *options); },
    };
    command.add(stepOptions(options->steps));
    addContentOptions(command, session, options->input);
    command.add({jsonFlag(session, "one JSON object a file")});
    return command;
}

}  // namespace velmo::tool
