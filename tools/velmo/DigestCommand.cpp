#include <velmocore/storage/Digests.h>
#include <velmocore/text/Checksums.h>

#include <memory>

#include "Commands.h"
#include "Input.h"

namespace velmo::tool {
namespace {

struct Options {
    std::vector<std::string> files;
    bool md5 = false, sha1 = false, crc = false;
};

void run(Session& session, const Options& options) {
    forEachFile(session, options.files, [&](const std::string& file, const std::string& content) {
        const Bytes bytes = Bytes(content);
        Json object = {{"file", text(file)}};
        if (options.md5) object["md5"] = MD5DigestStringValue(bytes).utf8();
        if (options.sha1) object["sha1"] = SHA1DigestStringValue(bytes).utf8();
        if (options.crc) object["crc"] = fmt::format("{:08x}", crc32(bytes));
        if (session.json) return session.printObject(object);
        std::string line;
        for (const auto& [key, value] : object.items())
            if (key != "file") line += value.get<std::string>() + "  ";
        session.printLine(line + file);
    });
}

}  // namespace

void addDigestCommand(CLI::App& app, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("digest",
                                           "Example: velmo digest --sha1 *.html\n"
                                           "Print fingerprints of files, in hexadecimal");
    command->add_option("FILE", options->files, "any files")->required();
    CLI::Option_group* kinds = command->add_option_group("kinds");
    kinds->add_flag("--md5", options->md5, "MD5");
    kinds->add_flag("--sha1", options->sha1, "SHA-1");
    kinds->add_flag("--crc", options->crc, "the library's own CRC-32");
    kinds->require_option(1, 3);
    command->add_flag("--json", session.json, "one JSON object a file");
    command->callback([&session, options] { run(session, *options); });
}

}  // namespace velmo::tool
