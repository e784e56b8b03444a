// A format is data here and may come from anywhere, so nothing of it reaches printf() unread: each
// conversion is taken apart, its letter must fit the kind of the argument, and it is put together
// anew. What does not fit stays in the text as it stands, where whoever wrote it will see it.
#include "text/Format.h"

#include <algorithm>
#include <cstdio>

#include <locale.h>

namespace velmo::detail {
namespace {

using View = std::u16string_view;

/// One conversion: % flags width . precision length letter.
struct Conversion {
    std::string flags;
    int width = 0;
    int precision = -1;    ///< below 0 for none
    char letter = 0;       ///< 0 if there is none
    std::size_t size = 0;  ///< in units, without the percent sign
};

/// Reads a conversion behind its percent sign. A number beyond five digits breaks it.
Conversion conversionAt(View format) {
    Conversion result;
    std::size_t i = 0;
    const auto isAt = [&](View units) {
        return i < format.size() && units.find(format[i]) != View::npos;
    };
    const auto number = [&] {
        int value = 0;
        // Five digits bound what one conversion can write, and no int overflows.
        for (int n = 0; n < 5 && isAt(u"0123456789"); ++n)
            value = value * 10 + (format[i++] - u'0');
        return value;
    };
    while (isAt(u"-+ #0") && result.flags.size() < 5)
        result.flags += static_cast<char>(format[i++]);
    result.width = number();
    if (isAt(u".")) {
        ++i;
        result.precision = number();
    }
    // Lengths are read over: the argument knows its own.
    while (isAt(u"hlqjzt")) ++i;
    if (i < format.size() && format[i] < 128) result.letter = static_cast<char>(format[i++]);
    result.size = i;
    return result;
}

/// While it lives, this thread prints numbers as the locale C has them. A program may have set one
/// whose decimal comma nobody who reads the text again would know.
class PlainNumbers {
public:
    PlainNumbers() noexcept : before_(::uselocale(plain())) {}
    PlainNumbers(const PlainNumbers&) = delete;
    ~PlainNumbers() { ::uselocale(before_); }

private:
    static locale_t plain() {
        static const locale_t locale = ::newlocale(LC_ALL_MASK, "C", nullptr);
        return locale;
    }
    locale_t before_;
};

/// A number by printf, which gets the conversion's own letter behind the length.
template <class Value>
std::u16string printed(const Conversion& conversion, const char* length, char letter, Value value) {
    const std::string format = "%" + conversion.flags + "*.*" + length + letter;
    const PlainNumbers plain;
    // A precision below 0 is none for printf() too.
    const auto print = [&](char* out, std::size_t room) {
        return std::snprintf(out, room, format.c_str(), conversion.width, conversion.precision,
                             value);
    };
    std::string text(static_cast<std::size_t>(std::max(0, print(nullptr, 0))) + 1, '\0');
    print(text.data(), text.size());
    return {text.begin(), text.end() - 1};
}

std::u16string padded(View string, const Conversion& conversion) {
    if (conversion.precision >= 0)
        string = string.substr(0, static_cast<std::size_t>(conversion.precision));
    std::u16string result(string);
    const auto width = static_cast<std::size_t>(conversion.width);
    const bool left = conversion.flags.find('-') != std::string::npos;
    if (result.size() < width) result.insert(left ? result.size() : 0, width - result.size(), u' ');
    return result;
}

/// The argument in the form of the conversion. %@ takes any kind, the others their own; false
/// if the argument is of another one.
bool appendArgument(std::u16string& out, const Conversion& conversion,
                    const FormatArgument& argument) {
    const auto* const integer = std::get_if<std::int64_t>(&argument.value());
    const auto* const real = std::get_if<double>(&argument.value());
    const auto* const string = std::get_if<String>(&argument.value());
    const auto isOneOf = [&](std::string_view letters) {
        return letters.find(conversion.letter) != letters.npos;
    };
    if (string && isOneOf("@s"))
        out += padded(*string, conversion);
    else if (integer && isOneOf("@diuxXo"))
        out += printed(conversion, "ll", isOneOf("@") ? 'd' : conversion.letter,
                       static_cast<long long>(*integer));
    else if (integer && isOneOf("cC"))
        out += static_cast<char16_t>(*integer);
    else if (real && isOneOf("@fFeEgG"))
        out += printed(conversion, "", isOneOf("@") ? 'g' : conversion.letter, *real);
    else
        return false;
    return true;
}

}  // namespace

std::u16string formatted(View format, std::initializer_list<FormatArgument> arguments) {
    std::u16string out;
    auto next = arguments.begin();
    while (!format.empty()) {
        const std::size_t percent = std::min(format.find(u'%'), format.size());
        out += format.substr(0, percent);
        format.remove_prefix(percent);
        if (format.empty()) break;
        const Conversion conversion = conversionAt(format.substr(1));
        const View whole = format.substr(0, conversion.size + 1);
        format.remove_prefix(whole.size());
        // A double percent sign takes no argument; any other conversion takes one, also if it does
        // not fit, so that those after it keep theirs.
        if (conversion.letter == '%')
            out += u'%';
        else if (next == arguments.end() || !appendArgument(out, conversion, *next++))
            out += whole;
    }
    return out;
}

}  // namespace velmo::detail
