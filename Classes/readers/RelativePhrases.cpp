#include "readers/RelativeTime.h"

namespace velmo::detail {
namespace {

constexpr int SecondsOfDay = 86400;

using Phrase = std::optional<RelativePhrase>;

Phrase wholeDays(int days, std::size_t tokens) {
    return {{{.isWholeDay = true, .days = days}, tokens}};
}

/// Reads the phrase that begins at a token.
class PhraseReader {
public:
    PhraseReader(const DateTokens& tokens, std::size_t at) : tokens_(tokens), at_(at) {}

    Phrase read() const {
        if (const DateWord* const day = peek().as(Meaning::RelativeDay))
            return wholeDays(day->value, 1);
        if (peek().as(Meaning::Now)) return {{{}, 1}};
        if (peek().as(Meaning::Last)) return lastOrNext(-1);
        if (peek().as(Meaning::Next)) return lastOrNext(1);
        if (peek().as(Meaning::In)) return counted(1, 1, 3);
        if (const Phrase phrase = dayAround()) return phrase;
        return agoOrFromNow();
    }

private:
    const DateToken& peek(std::size_t ahead = 0) const { return tokens_[at_ + ahead]; }

    /// last Monday, next week
    Phrase lastOrNext(int direction) const {
        const DateWord* const weekday = peek(1).as(Meaning::Weekday);
        if (!weekday) return units(peek(1), direction, 2);
        const std::chrono::weekday day(static_cast<unsigned>(weekday->value));
        return {{{.isWholeDay = true, .weekday = day, .direction = direction}, 2}};
    }

    /// (the) day before yesterday, (the) day after tomorrow
    Phrase dayAround() const {
        const std::size_t start = peek().as(Meaning::Filler) ? 1 : 0;
        const DateWord* const unit = peek(start).as(Meaning::Seconds);
        const DateWord* const day = peek(start + 2).as(Meaning::RelativeDay);
        if (!unit || unit->value != SecondsOfDay || !day || day->value == 0) return {};
        if (!peek(start + 1).as(day->value < 0 ? Meaning::Before : Meaning::After)) return {};
        return wholeDays(2 * day->value, start + 3);
    }

    /// 3 days ago, 2 weeks from now, 2 weeks from today
    Phrase agoOrFromNow() const {
        if (peek(2).as(Meaning::Ago)) return counted(0, -1, 3);
        return peek(2).as(Meaning::From) && isPresent(peek(3)) ? counted(0, 1, 4) : std::nullopt;
    }
    static bool isPresent(const DateToken& token) {
        const DateWord* const day = token.as(Meaning::RelativeDay);
        return token.as(Meaning::Now) || (day && day->value == 0);
    }

    /// A count and a unit behind it.
    Phrase counted(std::size_t ahead, int direction, std::size_t tokens) const {
        const DateToken& count = peek(ahead);
        const DateWord* const word = count.as(Meaning::Count);
        if (!word && (!count.isNumber() || count.digits > 4)) return {};
        return units(peek(ahead + 1), direction * (word ? word->value : count.value), tokens);
    }

    static Phrase units(const DateToken& unit, int count, std::size_t tokens) {
        if (const DateWord* const months = unit.as(Meaning::Months))
            return {{{.months = months->value * count}, tokens}};
        const DateWord* const seconds = unit.as(Meaning::Seconds);
        if (!seconds) return {};
        if (seconds->value >= SecondsOfDay)
            return {{{.days = seconds->value / SecondsOfDay * count}, tokens}};
        return {{{.seconds = std::int64_t{seconds->value} * count}, tokens}};
    }

    const DateTokens& tokens_;
    const std::size_t at_;
};

}  // namespace

std::optional<RelativePhrase> relativePhraseAt(const DateTokens& tokens, std::size_t at) {
    return PhraseReader(tokens, at).read();
}

}  // namespace velmo::detail
