#include <fmt/core.h>

#include <algorithm>
#include <functional>
#include <memory>

#include <velmocore/markup/EditableNotes.h>
#include <velmocore/markup/JunkStripping.h>
#include <velmocore/markup/LinkRewriting.h>
#include <velmocore/markup/MetadataWriting.h>
#include <velmocore/markup/TagStripping.h>
#include <velmocore/url/URLConstruction.h>

#include "Commands.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

using Step = std::function<String(const String& page, const WebRules& web)>;

struct Options {
    InputOptions input;
    std::vector<Step> steps;
    URL base;
    bool wantsBase = false;
};

/// A step that needs nothing more.
Option stepFlag(Options& options, std::string_view name, std::string help, Step step) {
    return {
        .names = name, .value = {}, .help = std::move(help), .take = [&options, step](const auto&) {
            options.steps.push_back(step);
        }};
}

/// A step that makes something of the value that it is given.
template <class Make>
Option stepWith(Options& options, std::string_view name, std::string_view value, std::string help,
                Make make) {
    return {.names = name,
            .value = value,
            .help = std::move(help),
            .take = [&options, make](const std::string& given) {
                options.steps.push_back(make(given));
            }};
}

using Text = String (*)(const String& page, const String& value, const WebRules& web);
using OfTag = String (*)(const String& page, std::string_view name, const WebRules& web);

Option textStep(Options& options, std::string_view name, std::string_view value, std::string help,
                Text change) {
    return stepWith(options, name, value, std::move(help), [change](const std::string& given) {
        return [change, text = String::fromUTF8(given)](const String& page, const WebRules& web) {
            return change(page, text, web);
        };
    });
}

Option tagStep(Options& options, std::string_view name, std::string help, OfTag change) {
    return stepWith(options, name, "NAME", std::move(help), [change](std::string tag) {
        for (char& unit : tag)
            if (unit >= 'a' && unit <= 'z') unit = static_cast<char>(unit - 'a' + 'A');
        return [change, tag](const String& page, const WebRules& web) {
            return change(page, tag, web);
        };
    });
}

/// The parts of a list with commas between.
std::vector<String> listOf(std::string_view given) {
    std::vector<String> list;
    for (std::size_t start = 0, end; start <= given.size(); start = end + 1) {
        end = std::min(given.find(',', start), given.size());
        list.push_back(String::fromUTF8(given.substr(start, end - start)));
    }
    return list;
}

Option bodiesStep(Options& options, std::string_view name, std::string help, bool except) {
    return stepWith(options, name, "LIST", std::move(help), [except](const std::string& given) {
        return [tags = listOf(given), except](const String& page, const WebRules& web) {
            return stripTagBodies(page, tags, {.except = except, .web = web});
        };
    });
}

URL urlOf(const std::string& option, const std::string& given) {
    URL url = URLWithNormalizedStringURL(String::fromUTF8(given));
    if (url.isAbsent()) throw UsageError(fmt::format("{}: {} is not a URL", option, given));
    return url;
}

std::vector<Option> tagOptions(Options& options) {
    return {
        stepFlag(options, "--tags", "take out all tags", stripTags),
        tagStep(options, "--tag", "take out the tags of that name, not what is between", stripTag),
        tagStep(options, "--attributes", "leave tags of that name their HREF or SRC only",
                stripAttributesOfTag),
        bodiesStep(options, "--bodies", "take out elements by how they begin: '<p,<div'", false),
        bodiesStep(options, "--bodies-except", "keep those elements only", true),
        tagStep(options, "--inner", "keep what is inside the first element of that name",
                innerTagBody),
        tagStep(options, "--outer", "keep the first element of that name", outerTagBody),
    };
}

std::vector<Option> linkOptions(Options& options) {
    return {
        stepFlag(options, "--objects", "take out scripts, plug-ins, frames and comments",
                 [](const String& page, const WebRules& web) {
                     return stripObjectsAndReplaceImages(page, false, web);
                 }),
        stepFlag(options, "--objects-and-images", "the same, and write images as their texts",
                 [](const String& page, const WebRules& web) {
                     return stripObjectsAndReplaceImages(page, true, web);
                 }),
        stepFlag(options, "--links", "take out links with their texts", stripLinks),
        stepFlag(options, "--file-links", "take out links to files", stripFileLinks),
        stepWith(options, "--resolve", "BASE", "make references absolute",
                 [](const std::string& given) {
                     return [base = urlOf("--resolve", given)](const String& page,
                                                               const WebRules& web) {
                         return resolveLinksUsingBaseURL(page, base, web);
                     };
                 }),
        stepWith(options, "--flatten", "PREFIX",
                 "make references names of files with that prefix; takes --base",
                 [&options](const std::string& given) {
                     options.wantsBase = true;
                     return [&options, prefix = String::fromUTF8(given)](const String& page,
                                                                         const WebRules& web) {
                         return flattenLinksUsingBaseURL(page, options.base, prefix, web);
                     };
                 }),
        {.names = "--base",
         .value = "URL",
         .help = "where the pages come from, for --flatten",
         .take = [&options](const std::string& given) { options.base = urlOf("--base", given); }},
    };
}

std::vector<Option> headOptions(Options& options) {
    return {
        textStep(options, "--set-base", "URL", "set the base tag; an empty URL takes it out",
                 stringBySettingBaseURL),
        textStep(options, "--add-base", "URL", "add a base tag where there is none",
                 stringByAddingBaseURL),
        textStep(options, "--remove-meta", "NAME", "take out the meta tags of that name",
                 stringByStrippingMetaAttributeWithName),
        stepFlag(options, "--note", "make an editable note", formattedNote),
    };
}

void run(Report& report, const Options& options) {
    if (options.wantsBase && options.base.isAbsent()) throw UsageError("--flatten needs --base");
    forEachContent(report, options.input,
                   [&](const FileName& file, Content&& content, Report& own) {
                       String page = std::move(content.units);
                       for (const Step& step : options.steps) page = step(page, content.web);
                       if (own.json())
                           return own.printObject(fileObject(file.path, {{"text", page}}));
                       own.printHeading(file.path);
                       if (!page.isAbsent()) own.printText(page);
                   });
}

}  // namespace

Command makeStripCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Take tags, elements and links out of pages, or rewrite them, step by step",
        .examples = {"velmo strip --objects --resolve https://example.org/ page.html",
                     "velmo strip --bodies '<img,<a' --inner body --json page.html"},
        .run = [options](Report& report) { run(report, *options); },
    };
    command.add(tagOptions(*options));
    command.add(linkOptions(*options));
    command.add(headOptions(*options));
    addContentOptions(command, session, options->input, Kind::Page);
    command.add({jsonFlag(session, "one JSON object a page")});
    return command;
}

}  // namespace velmo::tool
