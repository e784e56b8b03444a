#include "url/KeywordAutomaton.h"

#include <algorithm>

#include "platform/Ascii.h"
#include "platform/Assertion.h"

namespace velmo::detail {
namespace {

/// No folded text holds a capital.
bool canOccur(std::string_view keyword) {
    return !keyword.empty() && std::all_of(keyword.begin(), keyword.end(), [](char unit) {
        return unit > 0 && !ascii::isUpper(unit);
    });
}

}  // namespace

/// Makes the tree of all keywords, gives every state a next one for every unit, and numbers
/// the states so that those with marks come last: the walk then needs one comparison to
/// pass over all others.
class KeywordAutomaton::Builder {
public:
    explicit Builder(KeywordAutomaton& automaton) : classes_(automaton.classes_) { addState(); }

    void add(std::string_view keyword, KeywordMarks mark) {
        std::size_t state = 0;
        for (char unit : keyword) {
            const std::size_t c = classOf(unit);
            if (!edge(state, c)) {
                const std::size_t added = addState();
                edge(state, c) = added;
            }
            state = edge(state, c);
        }
        marks_[state] |= mark;
    }

    /// Nearest states first, so that the state of the longest proper suffix is always done.
    void close() {
        std::vector<std::size_t> queue{0}, suffix(marks_.size(), 0);
        for (std::size_t i = 0; i < queue.size(); ++i) {
            const std::size_t state = queue[i];
            for (std::size_t c = 1; c < Width; ++c) {
                const std::size_t fallback = state ? edge(suffix[state], c) : 0;
                const std::size_t next = edge(state, c);
                if (next) {
                    suffix[next] = fallback;
                    marks_[next] |= marks_[fallback];
                    queue.push_back(next);
                } else {
                    edge(state, c) = fallback;
                }
            }
        }
    }

    void moveTo(KeywordAutomaton& automaton) const {
        std::vector<std::size_t> order;
        for (std::size_t state = 0; state < marks_.size(); ++state) order.push_back(state);
        const auto marked = std::stable_partition(
            order.begin(), order.end(), [&](std::size_t state) { return marks_[state] == 0; });
        // The first state stays the first: it has no mark, as no keyword is empty, and the order
        // is stable.
        automaton.firstMarked_ = static_cast<std::size_t>(marked - order.begin());
        std::vector<State> numbers(order.size());
        for (std::size_t i = 0; i < order.size(); ++i) numbers[order[i]] = static_cast<State>(i);
        for (std::size_t state : order)
            for (std::size_t c = 0; c < Width; ++c)
                automaton.next_.push_back(numbers[edges_[state * Width + c]]);
        for (auto state = marked; state != order.end(); ++state)
            automaton.marks_.push_back(marks_[*state]);
    }

private:
    static constexpr std::size_t Width = std::size_t{1} << RowBits;

    std::size_t& edge(std::size_t state, std::size_t c) { return edges_[state * Width + c]; }

    std::size_t addState() {
        edges_.resize(edges_.size() + Width, 0);
        marks_.push_back(0);
        return marks_.size() - 1;
    }

    std::size_t classOf(char unit) {
        std::uint8_t& known = classes_[static_cast<unsigned char>(unit)];
        // Classes from 1 on: 0 is every unit that no keyword has, and leads back to the start.
        if (!known) known = ++numberOfClasses_;
        require(numberOfClasses_ < Width, "Classes/KeywordAutomaton", __LINE__, "classes<Width");
        return known;
    }

    std::uint8_t (&classes_)[128];
    std::uint8_t numberOfClasses_ = 0;
    std::vector<std::size_t> edges_;
    std::vector<KeywordMarks> marks_;
};

KeywordAutomaton::KeywordAutomaton(std::span<const KeywordList> lists) {
    Builder builder(*this);
    for (const KeywordList& list : lists)
        for (std::string_view keyword : list.keywords)
            if (canOccur(keyword)) builder.add(keyword, list.mark);
    builder.close();
    builder.moveTo(*this);
    // Capitals share the classes of their small letters, so that a walk folds ASCII without a
    // branch.
    for (char16_t unit = u'A'; unit <= u'Z'; ++unit) classes_[unit] = classes_[unit + 32];
}

}  // namespace velmo::detail
