#include "platform/MarkRuns.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/utf16.h>

#include <array>
#include <cstdint>
#include <vector>

namespace velmo::detail {
namespace {

/// In units. Up to here the time that ICU takes, the square of the run, does no harm.
constexpr std::size_t ShortRun = 32;

/// A mark as the normaliser sees it: what is to be put in order, and by what.
struct Mark {
    UChar32 character;
    std::uint8_t order;
};

/// The canonical decomposition of a character; the character itself without one.
class Decomposition {
public:
    explicit Decomposition(UChar32 character) {
        UErrorCode status = U_ZERO_ERROR;
        static const UNormalizer2* const normalizer = unorm2_getNFDInstance(&status);
        length_ = unorm2_getDecomposition(normalizer, character, units_.data(),
                                          static_cast<std::int32_t>(units_.size()), &status);
        if (U_SUCCESS(status) && length_ > 0) return;
        length_ = 0;
        U16_APPEND_UNSAFE(units_, length_, character);
    }

    template <class Function>
    void forEach(Function function) const {
        for (std::int32_t i = 0; i < length_;) {
            UChar32 character;
            U16_NEXT_UNSAFE(units_, i, character);
            function(Mark{character, u_getCombiningClass(character)});
        }
    }

private:
    std::array<char16_t, 32> units_;
    std::int32_t length_ = 0;
};

/// Whether a character is all marks that have an order, once it is decomposed.
bool isOrderedMark(UChar32 character) {
    if (character < 0x300) return false;
    // Few characters that have no order of their own are made of some that have.
    if (u_getCombiningClass(character) == 0 && !(U_GET_GC_MASK(character) & U_GC_M_MASK))
        return false;
    bool all = true;
    Decomposition(character).forEach([&](const Mark& mark) { all &= mark.order != 0; });
    return all;
}

/// Runs of marks in a text.
class MarkRuns {
public:
    explicit MarkRuns(std::u16string_view text) : text_(text) {}

    struct Run {
        std::size_t start, end;
    };

    /// The next run that is longer than a short one, from the end of the one before; its start
    /// is the text's end if there is none.
    Run next() {
        // A longer run covers one of the places that are that far apart.
        for (std::size_t place = end_ + ShortRun; place < text_.size(); place += ShortRun) {
            std::size_t at = place;
            U16_SET_CP_START(text_, 0, at);
            if (!isMarkAt(at)) continue;
            const Run run{startOfRun(at), endOfRun(at)};
            end_ = run.end;
            if (run.end - run.start > ShortRun) return run;
            place = run.end;
        }
        return {text_.size(), text_.size()};
    }

private:
    bool isMarkAt(std::size_t at) const {
        UChar32 character;
        U16_NEXT(text_, at, text_.size(), character);
        return isOrderedMark(character);
    }
    std::size_t startOfRun(std::size_t at) const {
        while (at > end_) {
            std::size_t before = at;
            U16_BACK_1(text_, end_, before);
            if (!isMarkAt(before)) break;
            at = before;
        }
        return at;
    }
    std::size_t endOfRun(std::size_t at) const {
        while (at < text_.size() && isMarkAt(at)) U16_FWD_1(text_, at, text_.size());
        return at;
    }

    std::u16string_view text_;
    std::size_t end_ = 0;  // of the run before
};

/// Appends a run, its marks ordered by counting: those of the same order stay as they are.
void appendInOrder(std::u16string& out, std::u16string_view run) {
    std::vector<Mark> marks;
    std::array<std::size_t, 257> places{};
    for (std::size_t i = 0; i < run.size();) {
        UChar32 character;
        U16_NEXT(run, i, run.size(), character);
        Decomposition(character).forEach([&](const Mark& mark) {
            marks.push_back(mark);
            ++places[mark.order + 1u];
        });
    }
    for (std::size_t order = 1; order < places.size(); ++order) places[order] += places[order - 1];
    std::vector<UChar32> ordered(marks.size());
    for (const Mark& mark : marks) ordered[places[mark.order]++] = mark.character;
    for (const UChar32 character : ordered) {
        std::array<char16_t, 2> units;
        std::size_t length = 0;
        U16_APPEND_UNSAFE(units, length, character);
        out.append(units.data(), length);
    }
}

}  // namespace

std::optional<std::u16string> withMarksInOrder(std::u16string_view text) {
    MarkRuns runs(text);
    MarkRuns::Run run = runs.next();
    if (run.start == text.size()) return std::nullopt;
    std::u16string result;
    result.reserve(text.size() + text.size() / 16);
    std::size_t done = 0;
    for (; run.start < text.size(); run = runs.next()) {
        result += text.substr(done, run.start - done);
        appendInOrder(result, text.substr(run.start, run.end - run.start));
        done = run.end;
    }
    return result += text.substr(done);
}

}  // namespace velmo::detail
