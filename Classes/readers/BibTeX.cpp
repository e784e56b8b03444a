// One forward walk from one unit that means something to the next. It knows where the name of the
// next field would begin, which is all that it has to remember of what it passed, and never goes
// back: what is looked for ahead and may be far, the bracket behind a type, is remembered.
#include <velmocore/readers/BibTeX.h>

#include <algorithm>
#include <optional>
#include <unordered_map>

#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/Comparison.h>

#include "platform/UnitHash.h"
#include "readers/BibTeXMacros.h"
#include "readers/BibTeXValue.h"
#include "text/Trim.h"
#include "text/UnitScan.h"
#include "text/WhiteRuns.h"

namespace velmo {
namespace {

using namespace detail;
using View = std::u16string_view;
using Position = const char16_t*;

struct NameHash {
    using is_transparent = void;
    std::size_t operator()(View name) const noexcept { return hashOfUnits(name, hashSeed()); }
};

/// The entries as they grow. A name is one string wherever it is used, and knows where it stands in
/// the entry that is being made, so that no entry is searched.
class EntryList {
public:
    void begin() { list_.entries.emplace_back(); }
    void set(View name, String value) {
        Name& known = nameOf(name);
        std::vector<BibTeXField>& fields = list_.entries.back().fields;
        if (known.entry == list_.entries.size()) {
            fields[known.field].value = std::move(value);
            return;
        }
        known.entry = list_.entries.size();
        known.field = fields.size();
        fields.push_back({list_.keys[known.key], std::move(value)});
    }
    BibTeXEntries finish() { return std::move(list_); }

private:
    struct Name {
        std::size_t key;        ///< its place among the keys
        std::size_t entry = 0;  ///< the number of the entry that had it last, counted from 1
        std::size_t field = 0;  ///< where it stands there
    };

    Name& nameOf(View name) {
        const auto known = names_.find(name);
        if (known != names_.end()) return known->second;
        list_.keys.emplace_back(name);
        return names_.try_emplace(list_.keys.back(), Name{list_.keys.size() - 1}).first->second;
    }

    BibTeXEntries list_;
    std::unordered_map<String, Name, NameHash, std::equal_to<>> names_;
};

bool isWhite(char16_t unit) { return isWhiteUnit(unit, whiteCharacterSetRep()); }
View trimmed(View text) { return trimmedView(text, Ends::Both, isWhite); }

class EntryReader {
public:
    EntryReader(View text, const String& type)
        : at_(text.data()), end_(at_ + text.size()), type_(type), macros_(text.size()) {}

    BibTeXEntries read() {
        while (at_ < end_) step();
        return entries_.finish();
    }

private:
    enum class Open { None, Dropped, Entry, Macros };

    /// Outside of entries all but the sign of the next one is skipped.
    void step() {
        at_ = open_ == Open::None
                  ? scan::find(at_, end_, u'@')
                  : scan::findAnyOf<u'@', u'=', u',', u'(', u'{', u')', u'}'>(at_, end_);
        if (at_ == end_) return;
        switch (*at_) {
            case u'@':
                close();
                return open();
            case u'=':
                return readField();
            case u')':
            case u'}':
                close();
                [[fallthrough]];
            default:
                name_ = ++at_;
        }
    }

    void open() {
        ++at_;
        const View type(at_, bracketBehind(at_));
        const Position behind = at_ + type.size();
        if (type.empty() || behind == end_) return;
        open_ = openedBy(type);
        if (open_ == Open::Dropped) {
            // An @ in what runs up to the bracket may be that of an entry that is wanted.
            at_ = scan::find(at_, behind, u'@');
            if (at_ < behind) return;
        }
        at_ = name_ = behind + 1;
        if (open_ != Open::Entry) return;
        entries_.begin();
        readKey();
    }

    /// A blank before the bracket is none of the type.
    Open openedBy(View written) const {
        const View type = trimmed(written);
        if (isEqualToStringNoCase(type, u"string")) return Open::Macros;
        return type_.isAbsent() || isEqualToStringNoCase(type, type_) ? Open::Entry : Open::Dropped;
    }

    void readKey() {
        const Position start = at_;
        at_ = scan::findAnyOf<u',', u'(', u')', u':', u'=', u'{', u'}'>(at_, end_);
        if (at_ == end_ || *at_ != u',') return;
        entries_.set(CitationKey, String(View(start, at_)));
        name_ = ++at_;
    }

    void readField() {
        const View name = trimmed({name_, at_});
        ++at_;
        skipWhite();
        const View value = readValue();
        skipWhite();
        name_ = at_;
        if (name.empty()) return;
        if (open_ == Open::Entry) entries_.set(name, cleaner_.cleaned(value));
        if (open_ == Open::Macros) defined_.push_back({String(name), cleaner_.cleaned(value)});
    }

    View readValue() {
        if (at_ == end_) return {};
        if (*at_ == u'"') return enclosedValue<u'"'>();
        if (*at_ == u'{') return enclosedValue<u'}'>();
        const Position start = at_;
        at_ = scan::findAnyOf<u',', u')', u'}'>(at_, end_);
        return {start, at_};
    }

    /// The value up to its end outside of braces, or all the rest. Goes behind it. A brace too many
    /// is not counted.
    template <char16_t End>
    View enclosedValue() {
        const Position start = ++at_;
        for (std::size_t depth = 0; at_ < end_; ++at_) {
            at_ = scan::findAnyOf<End, u'{', u'}'>(at_, end_);
            if (at_ == end_) break;
            if (*at_ == End && depth == 0) return {start, at_++};
            if (*at_ == u'{') ++depth;
            if (*at_ == u'}' && depth > 0) --depth;
        }
        return {start, end_};
    }

    /// Macros count from the end of their entry on.
    void close() {
        open_ = Open::None;
        for (const BibTeXField& macro : defined_) macros_.define(macro.name, macro.value);
        defined_.clear();
    }

    void skipWhite() {
        while (at_ < end_ && isWhite(*at_)) ++at_;
    }

    Position bracketBehind(Position from) {
        if (bracket_ < from) bracket_ = scan::findEither(from, end_, u'(', u'{');
        return bracket_;
    }

    Position at_;
    const Position end_;
    Position name_ = nullptr;     ///< where the name of the next field begins
    Position bracket_ = nullptr;  ///< the first one behind the last type
    const String& type_;
    Open open_ = Open::None;
    BibTeXMacros macros_;
    BibTeXValueCleaner cleaner_{macros_};
    std::vector<BibTeXField> defined_;  ///< macros of the entry that is open
    EntryList entries_;
};

}  // namespace

String BibTeXEntry::value(View name) const {
    const auto field = std::find_if(fields.begin(), fields.end(),
                                    [=](const auto& each) { return each.name == name; });
    return field == fields.end() ? String() : field->value;
}

BibTeXEntries BibTeXEntriesNamed(View text, const String& type) {
    return EntryReader(text, type).read();
}

}  // namespace velmo
