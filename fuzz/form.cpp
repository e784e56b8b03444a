// The first line is a boundary, the rest a multipart form. What is read must stand in the form, and
// a form that is made of it must be read as the same.
#include <velmocore/net/FormData.h>

#include <algorithm>

#include "Input.h"

using namespace velmo;

namespace {

using fuzz::require;

/// Whether fields can be written without a change of their meaning.
bool isPlain(const PropertyListDictionary& form, std::string_view delimiter) {
    return std::ranges::all_of(form, [&](const auto& field) {
        const Data* data = field.second.template as<Data>();
        const std::u16string_view name = field.first;
        return data && charsOf(*data).find(delimiter) == std::string_view::npos && !name.empty() &&
               name.find_first_of(u"\"\r\n\uFFFD=;\\ ") == std::u16string_view::npos;
    });
}

Data written(const PropertyListDictionary& form, std::string_view delimiter) {
    std::string bytes;
    for (const auto& [name, value] : form) {
        bytes += std::string(delimiter) + "\r\nContent-Disposition: form-data; name=\"";
        bytes += name.utf8() + "\"\r\n\r\n";
        bytes += std::string(charsOf(*value.as<Data>())) + "\r\n";
    }
    bytes += std::string(delimiter) + "--\r\n";
    return Data(bytes.begin(), bytes.end());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::size_t line = std::min(bytes.find('\n'), size);
    const String boundary = String::fromUTF8(bytes.substr(0, line));
    const std::string_view rest = bytes.substr(std::min(line + 1, size));
    const auto form = formDataUsingBoundary(rest, boundary);
    require(!form || rest.ends_with("--\r\n"));
    if (!form) return 0;
    for (const auto& [name, value] : *form)
        if (const Data* body = value.as<Data>())
            require(rest.find(charsOf(*body)) != std::string_view::npos);
    const std::string delimiter = "--" + boundary.utf8();
    if (!form->empty() && boundary.length() > 3 && isPlain(*form, delimiter))
        require(formDataUsingBoundary(written(*form, delimiter), boundary) == form);
    return 0;
}
