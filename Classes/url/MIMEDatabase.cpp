#include "url/MIMEDatabase.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <memory>

#include "platform/Ascii.h"

namespace velmo::detail {
namespace {

constexpr const char* InstalledGlobs = "/usr/share/mime/globs2";
constexpr const char* InstalledAliases = "/usr/share/mime/aliases";
/// Far more than any machine has.
constexpr std::size_t MostBytes = 4u << 20;

/// What the database itself gives to a glob without a weight.
constexpr int DefaultWeight = 50;

std::string readInstalled(const char* path) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
        std::fopen(path, "rb"), [](std::FILE* open) { return std::fclose(open); });
    std::string text;
    if (!file) return text;
    char block[16384];
    while (text.size() < MostBytes) {
        const std::size_t count = std::fread(block, 1, sizeof block, file.get());
        if (count == 0) break;
        text.append(block, count);
    }
    return text;
}

/// The database writes some types with capitals; they are looked up in lower case.
std::string lowerCase(std::string_view ascii) {
    std::string lower(ascii);
    for (char& c : lower) c = ascii::toLower(c);
    return lower;
}

/// What stands in front of the separator, which is removed too; all of the rest if there is none.
std::string_view cutField(std::string_view& rest, char separator) {
    const std::size_t end = std::min(rest.find(separator), rest.size());
    const std::string_view field = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return field;
}

/// Our own type of an extension; empty if it has none.
std::string_view ownTypeOf(std::string_view extension) {
    const auto rows = mimeRows();
    const auto row = std::find_if(rows.begin(), rows.end(), [extension](const MIMERow& candidate) {
        return candidate.extension == extension;
    });
    return row == rows.end() ? std::string_view() : row->type;
}

}  // namespace

// The first extension that a type is given stays, so that the order of what follows tells whom
// to believe: the database lists the extensions of a type in no order of preference.
MIMEDatabase::MIMEDatabase(std::string_view globs, std::string_view aliases) {
    for (const MIMERow& row : mimeRows()) prefer(row.type, row.extension);
    for (const MIMERow& row : preferredRows()) prefer(row.type, row.extension);
    while (!globs.empty()) addLine(cutField(globs, '\n'));
    // Last and with a weight below all others: our own rows stand in only where the database has
    // none.
    for (const MIMERow& row : mimeRows()) add(row.extension, row.type, -1);
    while (!aliases.empty()) addAlias(cutField(aliases, '\n'));
}

const MIMEDatabase& MIMEDatabase::installed() {
    static const MIMEDatabase database(readInstalled(InstalledGlobs),
                                       readInstalled(InstalledAliases));
    return database;
}

void MIMEDatabase::prefer(std::string_view type, std::string_view extension) {
    extensions_.try_emplace(lowerCase(type), extension);
}

void MIMEDatabase::addAlias(std::string_view line) {
    const std::string_view alias = cutField(line, ' ');
    const std::string extension(extensionOf(lowerCase(line)));
    if (!alias.empty() && !extension.empty()) prefer(alias, extension);
}

void MIMEDatabase::addLine(std::string_view line) {
    if (line.starts_with('#')) return;
    const std::string_view number = cutField(line, ':');
    const std::string_view type = cutField(line, ':');
    const std::string_view glob = cutField(line, ':');
    const bool respectsCase = line == "cs";
    // Only a plain "*.ext" tells an extension; a row in exact case, such as *.C, would claim that
    // of other files when it is looked up in lower case.
    if (respectsCase || type.empty() || glob.size() < 3 || !glob.starts_with("*.")) return;
    const std::string_view extension = glob.substr(2);
    if (extension.find_first_of("*?[]") != extension.npos) return;
    int weight = DefaultWeight;
    std::from_chars(number.data(), number.data() + number.size(), weight);
    add(extension, type, std::max(weight, 0));
}

void MIMEDatabase::add(std::string_view extension, std::string_view type, int weight) {
    const auto [entry, isNew] =
        types_.try_emplace(std::string(extension), Type{std::string(type), weight});
    Type& known = entry->second;
    if (!isNew &&
        (weight > known.weight || (weight == known.weight && type == ownTypeOf(extension))))
        known = {std::string(type), weight};
    prefer(type, extension);
}

std::string_view MIMEDatabase::typeOf(std::string_view extension) const {
    const auto entry = types_.find(std::string(extension));
    return entry == types_.end() ? std::string_view() : entry->second.name;
}

std::string_view MIMEDatabase::extensionOf(std::string_view type) const {
    const auto entry = extensions_.find(std::string(type));
    return entry == extensions_.end() ? std::string_view() : entry->second;
}

}  // namespace velmo::detail
