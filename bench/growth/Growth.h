// What the growth check is made of: hostile texts of any size, and the operations that are run
// over each of them.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo::growth {

/// A text that may hurt: the head, the body over and over, the tail. In the body, Number (\001)
/// stands for a running number, so that no two rounds are the same.
struct Hostile {
    const char* name;
    std::u16string_view head, body, tail = {};
};

inline constexpr char16_t Number = u'\1';

std::span<const Hostile> plainTexts();
std::span<const Hostile> markupTexts();
std::span<const Hostile> locationTexts();
std::span<const Hostile> queryTexts();
std::span<const Hostile> dateTexts();
std::span<const Hostile> sheetTexts();
std::span<const Hostile> netTexts();
std::span<const Hostile> sourceTexts();

/// The text of about so many units.
std::u16string textOf(const Hostile& hostile, std::size_t units);

/// A hostile text in the forms that operations take, made ahead of the time that is measured.
struct Input {
    explicit Input(std::u16string_view units);

    String text;
    Data utf8;
    URL url;          ///< absent where the text is none
    Data compressed;  ///< the UTF-8, and its base64
    String base64;
    String almost;  ///< the first half, and a unit that no text has: a pattern that fails late
};

/// One operation, or a few that share their core. The work beside the input is fixed, so that
/// it may cost twice as much for a text twice as long.
struct Operation {
    const char* name;
    void (*run)(const Input& input);
    /// The least n that tells anything, where small texts cost less a unit than all others: as
    /// many as fit into a window, or into what the processor remembers of a branch.
    std::size_t leastUnits = 0;
};

std::span<const Operation> textOperations();
std::span<const Operation> cleaningOperations();
std::span<const Operation> wordOperations();
std::span<const Operation> queryOperations();
std::span<const Operation> urlOperations();
std::span<const Operation> markupOperations();
std::span<const Operation> feedOperations();
std::span<const Operation> storageOperations();
std::span<const Operation> systemOperations();
std::span<const Operation> readerOperations();
std::span<const Operation> netOperations();
std::span<const Operation> gatherOperations();
std::span<const Operation> sourceOperations();

/// Uses a result, so that no compiler leaves the work out.
template <class Result>
void use(const Result& result) {
    asm volatile("" : : "r"(&result) : "memory");
}

/// Calls each of some functions of one shape.
template <class Result, class Argument>
void useEach(Argument argument, std::initializer_list<Result (*)(Argument)> functions) {
    for (const auto function : functions) use(function(argument));
}

/// Changes a copy of the text by each of some functions.
inline void changeEach(const String& text,
                       std::initializer_list<void (*)(std::u16string&)> functions) {
    for (const auto function : functions) {
        std::u16string units(text);
        function(units);
        use(units);
    }
}

}  // namespace velmo::growth
