#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/FunctionRef.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>

namespace velmo {

// Delimited sheets: values separated by tabs, commas or semicolons. A row has a string for each
// field, and rows are not padded to one length. Which separator a text has is told by its count
// alone, outside quotes: the tab if there are more than of both others, else the comma if there are
// more than semicolons, else the semicolon. A row ends at a feed unit (isFeedUnit()); empty lines
// and lines of empty fields make no row.
//
//     const Sheet sheet = valuesSeparatedByTab(u"name,note\nTea,\"hot, strong\"\n");
//     sheet.rows[1][1];           // hot, strong
//     sheet.numberOfColumns;      // 2
//
// Time is linear in the text. Any thread may call these.

/// The fields of a row.
using SheetRow = std::vector<String>;

/// No limit to the number of rows.
inline constexpr std::size_t AllRows = std::numeric_limits<std::size_t>::max();

/// How a sheet is read.
struct SheetOptions {
    /// Quotes around a field are not part of it, and hold separators and line ends; two quotes in
    /// them stand for one. Without it a field is what stands between separators, and the last unit
    /// of the text, which is to be a line end, is part of no field.
    bool quoted = true;
    /// Stops when so many rows are there, but looks at a line at least.
    std::size_t maxRows = AllRows;
    /// Ours: two quotes within quotes stand for one also in front of a separator, as RFC 4180 has
    /// it.
    bool standardQuotes = false;
};

/// What is known of a sheet beside its rows.
struct SheetShape {
    std::size_t numberOfColumns = 0;  ///< the most fields in a line, of those without text too
    /// The first row is a definition of the columns. A text tells it by no row with a first field.
    bool definition = false;
};

/// A sheet in strings.
struct Sheet : SheetShape {
    std::vector<SheetRow> rows;  ///< those that have a text
};

/// The rows of a text. Whatever a caller expects, the separator is the one that is detected.
///
/// A quote opens only as the first unit of a field. Inside, it closes unless another one follows
/// that has no separator behind it. So a field is cut where its text has a quote in front of a
/// separator, unless standardQuotes is set.
[[nodiscard]] VELMO_API Sheet valuesSeparatedByTab(std::u16string_view text,
                                                   const SheetOptions& options = {});

/// A field where it stands in the text, without its quotes.
struct SheetField {
    std::u16string_view units;      ///< good as long as the text is
    bool hasDoubledQuotes = false;  ///< which text() makes single ones

    /// The field as a string; the empty one for an empty field.
    [[nodiscard]] VELMO_API String text() const;
};

/// Ours: the same rows without a string made, for sheets that are too large to keep. The handler
/// gets each row, which is good until it returns, and returns whether to go on.
///
///     std::size_t fields = 0;
///     forEachSheetRow(u"a;b\nc\n", [&](std::span<const SheetField> row) {
///         fields += row.size();
///         return true;
///     });
///     fields;    // 3
VELMO_API SheetShape forEachSheetRow(std::u16string_view text,
                                     FunctionRef<bool(std::span<const SheetField> row)> handler,
                                     const SheetOptions& options = {});

/// Ours: all rows of a text as views of it, which take no string a field and several times less
/// time. The text must outlive them.
///
///     const String text = u"tea;3\ncoffee;\"4\"\n";
///     const SheetView sheet(text);
///     sheet.size();               // 2
///     sheet[1][1].text();         // 4
class VELMO_API SheetView {
public:
    /// Reads all rows.
    explicit SheetView(std::u16string_view text VELMO_LIFETIME, const SheetOptions& options = {});

    /// The number of rows.
    [[nodiscard]] std::size_t size() const noexcept { return ends_.size(); }
    /// A row below that number.
    [[nodiscard]] std::span<const SheetField> operator[](std::size_t row) const VELMO_LIFETIME {
        const std::size_t start = row == 0 ? 0 : ends_[row - 1];
        return std::span(fields_).subspan(start, ends_[row] - start);
    }
    /// What is known of it beside its rows.
    [[nodiscard]] const SheetShape& shape() const noexcept VELMO_LIFETIME { return shape_; }

private:
    std::vector<SheetField> fields_;
    std::vector<std::size_t> ends_;  ///< of the rows among all fields
    SheetShape shape_;
};

/// Adds a field in its quoted form to a row: without its quotes, if it begins and ends with one,
/// and with single quotes for doubled ones where it has such. Whether any text was left; an empty
/// field is added as the empty string.
VELMO_API bool addQuotedField2Line(SheetRow& row, std::u16string_view field, bool hasDoubledQuotes);

/// Appends a field in quotes, with the quotes in it doubled, and a semicolon, or at the end of a
/// row a line feed.
///
///     std::u16string line;
///     appendDoubleQuotedField(line, u"2\"", true);
///     appendDoubleQuotedField(line, u"", false);
///     String(line);    // "2""";""\n
VELMO_API void appendDoubleQuotedField(std::u16string& text, std::u16string_view field,
                                       bool separator);

// Files.

/// Kinds of files that hold sheets.
enum class SheetFormat : std::uint8_t {
    None = 0,    ///< no sheet
    CSV = 1,     ///< quoted values
    TSV = 2,     ///< the same: TSV, TDF, TAB
    ID2XF = 3,   ///< unquoted values, the first row a definition
    BibTeX = 4,  ///< bibliographic entries: BIB
};

/// By the extension of its name, in any case. No file is looked at.
///
///     sheetFormatOfFile("prices.Csv") == SheetFormat::CSV;    // true
[[nodiscard]] VELMO_API SheetFormat sheetFormatOfFile(const Path& path);

/// The sheet in a file; absent if its name is not that of a sheet, or if it cannot be read in the
/// encoding (stringWithContentsOfFile()). A file of quoted values has a definition too if it has
/// the extended attribute "com.velmo-works.tsv-header" (hasSheetDefinitionAttribute()).
///
/// Entries become a row of their keys and a row for each entry, with an empty string for what an
/// entry lacks; maxRows does not limit them, and the shape says nothing. They are absent if they
/// would make more than a million fields and sixteen for each unit of the text, which no real
/// bibliography does.
[[nodiscard]] VELMO_API std::optional<Sheet> sheetWithContentsOfFile(const Path& path,
                                                                     StringEncoding encoding,
                                                                     std::size_t maxRows = AllRows);

/// Whether a file has that attribute, which says that its first row is a definition.
[[nodiscard]] VELMO_API bool hasSheetDefinitionAttribute(const Path& path);

/// Ours: the same for a text that has been read, and so without the attribute. Of the options, the
/// format says whether values are quoted.
[[nodiscard]] VELMO_API std::optional<Sheet> sheetWithText(std::u16string_view text,
                                                           SheetFormat format,
                                                           SheetOptions options = {});

}  // namespace velmo
