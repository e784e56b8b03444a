#include <velmocore/markup/TagAttributes.h>
#include <velmocore/net/FormData.h>
#include <velmocore/text/StringFiles.h>

#include <string.h>

#include "text/Format.h"

namespace velmo {
namespace {

using Chars = std::string_view;

constexpr Chars Disposition = "Content-Disposition: form-data;";
constexpr Chars LineEnd = "\r\n", HeaderEnd = "\r\n\r\n", End = "--\r\n";
constexpr std::size_t LeastHeader = 4;

/// Linear whatever is sought, which std::string_view does not promise: both come from outside.
std::size_t find(Chars text, Chars sought) {
    const void* found = ::memmem(text.data(), text.size(), sought.data(), sought.size());
    return found ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data())
                 : Chars::npos;
}

String quotedField(const String& header, std::u16string_view name) {
    return headerFieldNamed(header, name, {.quotation = u'"'});
}

/// One part, up to the CR LF in front of the delimiter.
void addPart(Chars part, PropertyListDictionary& form) {
    part.remove_prefix(std::min(part.find_first_not_of(' ', Disposition.size()), part.size()));
    const std::size_t end = find(part, HeaderEnd);
    if (end == Chars::npos || end < LeastHeader) return;
    const String header = stringUsingUTF8Encoding(part.substr(0, end));
    const String name = quotedField(header, u"NAME");
    if (name.isAbsent()) return;
    const Bytes body(part.substr(end + HeaderEnd.size()));
    form[name] = {Data(body.begin(), body.end())};
    const String fileName = quotedField(header, u"FILENAME");
    if (!fileName.isAbsent()) form[name + u"_filename"] = {fileName};
}

bool isFormPart(Chars part) {
    return part.size() >= Disposition.size() + LineEnd.size() && part.starts_with(Disposition) &&
           part.ends_with(LineEnd);
}

}  // namespace

std::optional<PropertyListDictionary> formDataUsingBoundary(Bytes data, const String& boundary) {
    if (boundary.isAbsent() || data.empty()) return {};
    const std::string delimiter = "--" + boundary.utf8();
    Chars rest = charsOf(data);
    if (rest.size() <= delimiter.size() + End.size() || !rest.ends_with(End)) return {};
    rest.remove_suffix(End.size());
    PropertyListDictionary form;
    while (!rest.empty()) {
        const std::size_t at = find(rest, delimiter);
        if (at == Chars::npos) break;
        const Chars part = rest.substr(0, at);
        if (isFormPart(part)) addPart(part.substr(0, part.size() - LineEnd.size()), form);
        rest.remove_prefix(at + delimiter.size());
        if (rest.starts_with(LineEnd)) rest.remove_prefix(LineEnd.size());
    }
    return form;
}

String stringUsingUTF8Encoding(Bytes data) { return stringUsingEncoding(data, UTF8StringEncoding); }

String stringUsingEncoding(Bytes data, StringEncoding encoding) {
    return stringWithData(data, encoding);
}

void appendString(Data& data, std::u16string_view string) {
    const std::string bytes = utf8(string);
    data.insert(data.end(), bytes.begin(), bytes.end());
}

void appendFormat(Data& data, std::u16string_view format,
                  std::initializer_list<FormatArgument> arguments) {
    appendString(data, detail::formatted(format, arguments));
}

}  // namespace velmo
