#include <velmocore/net/HTTPHeaders.h>
#include <velmocore/text/StringFiles.h>

#include <algorithm>

#include "platform/Ascii.h"

namespace velmo {
namespace {

using Chars = std::string_view;

bool isSameName(std::u16string_view a, std::u16string_view b) {
    return std::ranges::equal(a, b, [](char16_t one, char16_t other) {
        return detail::ascii::toLower(one) == detail::ascii::toLower(other);
    });
}

bool isBlank(char unit) { return unit == ' ' || unit == '\t'; }

Chars trimmed(Chars text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

String decoded(Chars text) {
    if (text.empty()) return String::empty();
    if (stringWithData(text, UTF8StringEncoding).isAbsent())
        return stringWithData(text, ISOLatin1StringEncoding);
    return String::fromUTF8(text);  // with what might be a byte-order mark
}

/// Whether a name can be one: visible units of ASCII.
bool isName(Chars text) {
    return !text.empty() &&
           std::ranges::all_of(text, [](char unit) { return unit > ' ' && unit < 127; });
}

/// Takes the next line off, without its end.
Chars nextLine(Chars& rest) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    Chars line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

/// HTTP/1.1 200 OK
std::optional<HTTPResponseHead> headOfStatusLine(Chars line) {
    if (!line.starts_with("HTTP/")) return {};
    line = trimmed(line.substr(std::min(line.find(' '), line.size())));
    const bool isStatus = line.size() >= 3 &&
                          std::ranges::all_of(line.substr(0, 3), detail::ascii::isDigit<char>) &&
                          (line.size() == 3 || line[3] == ' ');
    if (!isStatus) return {};
    const int status = (line[0] - '0') * 100 + (line[1] - '0') * 10 + (line[2] - '0');
    return HTTPResponseHead{status, decoded(trimmed(line.substr(3))), {}};
}

/// A field whose value may go on in the next line. It is kept as bytes until it is whole, so that
/// many lines cost no more than one.
class OpenField {
public:
    void begin(Chars line) {
        const std::size_t colon = line.find(':');
        name_ = trimmed(line.substr(0, colon == Chars::npos ? 0 : colon));
        if (!isName(name_)) name_ = {};
        if (!name_.empty()) value_ = trimmed(line.substr(colon + 1));
    }
    void goOn(Chars line) {
        if (name_.empty()) return;
        value_ += ' ';
        value_ += trimmed(line);
    }
    void endIn(HTTPHeaders& headers) {
        if (!name_.empty()) headers.add({decoded(name_), decoded(trimmed(value_))});
        name_ = {};
    }

private:
    Chars name_;
    std::string value_;
};

}  // namespace

String HTTPHeaders::value(std::u16string_view name) const {
    const HTTPHeader* first = nullptr;
    StringBuilder joined;
    for (const HTTPHeader& header : headers_) {
        if (!isSameName(header.name, name)) continue;
        if (!first) {
            first = &header;
            continue;
        }
        if (joined.isEmpty()) joined.append(first->value.view());
        joined.append(u", ");
        joined.append(header.value.view());
    }
    if (!joined.isEmpty()) return joined.finish();
    return first ? first->value : String();
}

void HTTPHeaders::setValue(const String& name, const String& value) {
    const auto hasName = [&](const HTTPHeader& header) { return isSameName(header.name, name); };
    const auto first = std::ranges::find_if(headers_, hasName);
    if (value.isAbsent()) {
        std::erase_if(headers_, hasName);
    } else if (first == headers_.end()) {
        headers_.push_back({name, value});
    } else {
        first->value = value;
        headers_.erase(std::remove_if(first + 1, headers_.end(), hasName), headers_.end());
    }
}

std::optional<HTTPResponseHead> responseHeadOfBytes(Bytes bytes) {
    Chars rest = charsOf(bytes);
    std::optional<HTTPResponseHead> head = headOfStatusLine(nextLine(rest));
    if (!head) return {};
    OpenField field;
    while (!rest.empty()) {
        const Chars line = nextLine(rest);
        if (line.empty()) break;
        if (isBlank(line.front())) {
            field.goOn(line);
        } else {
            field.endIn(head->headers);
            field.begin(line);
        }
    }
    field.endIn(head->headers);
    return head;
}

}  // namespace velmo
