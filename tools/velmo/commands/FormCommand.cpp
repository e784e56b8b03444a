// What a multipart form holds: the body of a request as a server gets it, from a file.
#include <fmt/core.h>

#include <memory>

#include <velmocore/net/FormData.h>

#include "Commands.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

struct Options {
    InputOptions input;
    std::string boundary;
    bool hasBoundary = false;
};

struct Field {
    String name, fileName;
    const Data& data;
};

/// The fields by their names. A file name stands beside its field.
std::vector<Field> fieldsOf(const PropertyListDictionary& form) {
    std::vector<Field> fields;
    for (const auto& [name, value] : form)
        if (const Data* data = value.as<Data>()) {
            const auto found = form.find(name + u"_filename");
            const String* fileName = found == form.end() ? nullptr : found->second.as<String>();
            fields.push_back({name, fileName ? *fileName : String(), *data});
        }
    return fields;
}

JsonObject objectOf(const Field& field) {
    return {{"name", field.name},
            {"filename", field.fileName},
            {"bytes", field.data.size()},
            {"text", stringUsingUTF8Encoding(field.data)}};
}

void print(const std::string& file, const std::vector<Field>& fields, Report& report) {
    if (!report.json()) {
        for (const Field& field : fields)
            report.printLine(fmt::format(
                "{}: {} bytes{}", field.name.utf8(), field.data.size(),
                field.fileName.isAbsent() ? std::string() : ", file " + field.fileName.utf8()));
        return;
    }
    JsonArray objects;
    for (const Field& field : fields) objects.push_back(objectOf(field));
    report.printObject(fileObject(file, {{"fields", std::move(objects)}}));
}

void run(Report& report, const Options& options) {
    if (!options.hasBoundary) throw UsageError("--boundary is missing");
    const String boundary = String::fromUTF8(options.boundary);
    forEachFile(report, options.input, [&](const FileName& file, Data&& bytes, Report& own) {
        const auto form = formDataUsingBoundary(bytes, boundary);
        if (!form) throw InputError("no form with this boundary");
        print(file.path, fieldsOf(*form), own);
    });
}

}  // namespace

Command makeFormCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Show the fields of a multipart form, as a server gets it",
        .examples = {"velmo form --boundary XyZ form.bin"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addFileOptions(command, session, options->input, "forms; none, or -, is standard input");
    command.add({
        {.names = "--boundary",
         .value = "TEXT",
         .help = "what the header of the request names so",
         .take =
             [options](const std::string& value) {
                 options->boundary = value;
                 options->hasBoundary = true;
             }},
        jsonFlag(session, "one JSON object a file"),
    });
    return command;
}

}  // namespace velmo::tool
