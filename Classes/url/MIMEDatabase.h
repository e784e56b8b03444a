// MIME types by extension and back: what the shared MIME database of the machine says, and
// a table of our own.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

namespace velmo::detail {

/// A row of our own table. The first extension of a type is the one to give its files.
struct MIMERow {
    std::string_view extension, type;
};
std::span<const MIMERow> mimeRows() noexcept;
/// Types that only files of others, or many extensions have: the extension to give them. No
/// extension gets its type from here.
std::span<const MIMERow> preferredRows() noexcept;

/// Immutable once made, so any thread may use it. Extensions and types are asked for in lower
/// case; types are given as the database writes them.
class MIMEDatabase {
public:
    /// Takes the texts of the files "globs2" and "aliases" of the shared MIME database, which may
    /// be empty. Of the lines "weight:type:glob:flags" those count whose glob is *. and an
    /// extension; the others are "alias type".
    explicit MIMEDatabase(std::string_view globs, std::string_view aliases = {});

    /// That of this machine, read at first use.
    static const MIMEDatabase& installed();

    /// Empty if there is none. Of several types the one with the greatest weight; among
    /// equals that of our own table, or else the first.
    std::string_view typeOf(std::string_view extension) const;
    /// Empty if there is none. The database prefers none of a type's extensions, so our own
    /// tables are asked first.
    std::string_view extensionOf(std::string_view type) const;

private:
    struct Type {
        std::string name;
        int weight;
    };

    void addLine(std::string_view line);
    void addAlias(std::string_view line);
    /// Gives a type its extension unless it has one.
    void prefer(std::string_view type, std::string_view extension);
    void add(std::string_view extension, std::string_view type, int weight);

    std::unordered_map<std::string, Type> types_;
    std::unordered_map<std::string, std::string> extensions_;
};

}  // namespace velmo::detail
