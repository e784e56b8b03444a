// A Bloom filter of the words of a text and of the stretches of three units in them.
//
// Words alone would rule out most pages for most queries; but of a pattern, or a word that is
// sought inside others, only parts are known. So each word also sets one bit for each three units
// in a row, its edges being a unit too: "tea" sets bits for ^te, tea, ea$. The parts repeat from
// word to word, so that all of them together take hardly more bits than the words; and they help to
// rule out words as well.
//
// Scripts that put no spaces between words have no words that could be told, and terms are found
// anywhere in them: of these each unit sets a bit, and each two in a row do. Where one of their
// units adjoins another, a word ends.
//
// How many bits a word sets is chosen such that about half of all bits are set in the end, which
// tells most. The number stands in the signature.
#include "gather/PageSignature.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <string>
#include <vector>

#include <velmocore/text/Checksums.h>

#include "gather/SignatureUnits.h"
#include "storage/BigEndian.h"

namespace velmo::detail {
namespace {

constexpr std::uint8_t Version = 1;
// Version, number of probes, share of the bits that are set (in 255ths), 0, checksum.
constexpr std::size_t HeaderSize = 8, ChecksumPlace = 4;
/// With what a record of keyed data takes, a signature stays below 6 % of the text.
constexpr std::size_t Overhead = HeaderSize + 16;
constexpr std::size_t Percentage = 6;
constexpr std::size_t LeastBits = 128;
/// More for a word tells hardly more: a long text repeats its words.
constexpr std::size_t MostBitsForWord = 48, MostBitsForUnspaced = 6;
constexpr double MostProbes = 8;

// Stand for no unit of a word.
constexpr char16_t Edge = 1, Unspaced = 2;

constexpr std::uint64_t mixed(std::uint64_t value) {
    value *= 0x9E3779B97F4A7C15;
    value ^= value >> 32;
    value *= 0xD6E8FEB86659FD93;
    return value ^ value >> 32;
}

constexpr std::uint64_t hashOfThree(char16_t a, char16_t b, char16_t c) {
    return mixed(std::uint64_t{a} << 32 | std::uint64_t{b} << 16 | c);
}

std::uint64_t hashOfWord(std::u16string_view classes) {
    std::uint64_t hash = classes.size();
    for (const char16_t unit : classes) hash = (hash ^ unit) * 0x9E3779B97F4A7C15 + (hash >> 47);
    return mixed(hash);
}

/// A position below the count for the lower half of a hash.
std::uint32_t positionOf(std::uint32_t hash, std::uint32_t count) {
    return static_cast<std::uint32_t>(std::uint64_t{hash} * count >> 32);
}

/// Calls position(p) for each bit that a word sets, until it gives false; true if it never did.
template <class Position>
bool forEachProbe(std::uint64_t hash, std::uint32_t probes, std::uint32_t count,
                  Position position) {
    auto place = static_cast<std::uint32_t>(hash);
    const auto step = static_cast<std::uint32_t>(hash >> 32) | 1;
    for (std::uint32_t i = 0; i < probes; ++i, place += step)
        if (!position(positionOf(place, count))) return false;
    return true;
}

/// Units that follow one another without a gap, all of scripts with spaces or all of others.
struct Segment {
    std::size_t start, end;
    bool isUnspaced;
};

template <class Handler>
void forEachSegment(std::u16string_view classes, const SignatureUnits& known, Handler handler) {
    for (std::size_t start = 0; start < classes.size();) {
        if (classes[start] == 0) {
            ++start;
            continue;
        }
        const bool isUnspaced = known.unspaced.contains(classes[start]);
        std::size_t end = start + 1;
        while (end < classes.size() && classes[end] != 0 &&
               known.unspaced.contains(classes[end]) == isUnspaced)
            ++end;
        handler(Segment{start, end, isUnspaced});
        start = end;
    }
}

/// The hashes of the parts of a word of which the edges are known, or not.
template <class Handler>
void forEachPart(std::u16string_view word, StretchEdges edges, Handler handler) {
    if (word.size() >= 2 && edges.start) handler(hashOfThree(Edge, word[0], word[1]));
    for (std::size_t i = 2; i < word.size(); ++i)
        handler(hashOfThree(word[i - 2], word[i - 1], word[i]));
    if (word.size() >= 2 && edges.end)
        handler(hashOfThree(word[word.size() - 2], word.back(), Edge));
}

template <class Handler>
void forEachUnspacedPart(std::u16string_view units, Handler handler) {
    for (std::size_t i = 0; i < units.size(); ++i) {
        handler(hashOfThree(units[i], Unspaced, Unspaced));
        if (i > 0) handler(hashOfThree(units[i - 1], Unspaced, units[i]));
    }
}

std::u16string classesOf(std::u16string_view units, const SignatureUnits& known) {
    std::u16string classes(units.size(), u'\0');
    std::ranges::transform(units, classes.begin(),
                           [&](char16_t unit) { return known.classes[unit]; });
    return classes;
}

/// The share of the bits that are set.
double fillOf(Bytes signature) {
    std::size_t isSet = 0;
    for (const std::uint8_t byte : signature.subspan(HeaderSize))
        isSet += static_cast<unsigned>(std::popcount(byte));
    return static_cast<double>(isSet) / static_cast<double>((signature.size() - HeaderSize) * 8);
}

/// Words, each once, in a table with open addressing. Of words that meet too often in it, which
/// somebody must have looked for, some stand there twice; that costs a little time and no more.
class WordTable {
public:
    struct Entry {
        std::uint64_t hash;
        std::u16string_view word;
    };

    explicit WordTable(std::size_t expected)
        : places_(std::bit_ceil(std::max<std::size_t>(expected, 8) * 2)) {}

    void add(std::u16string_view word) {
        const std::uint64_t hash = hashOfWord(word);
        std::uint32_t& place = places_[find(hash, word)];
        if (place != 0 && isOf(place, hash, word)) return;
        entries_.push_back({hash, word});
        place = static_cast<std::uint32_t>(entries_.size());
        if (entries_.size() * 2 > places_.size()) grow();
    }
    const std::vector<Entry>& entries() const { return entries_; }

private:
    static constexpr std::size_t MostTries = 32;

    bool isOf(std::uint32_t place, std::uint64_t hash, std::u16string_view word) const {
        const Entry& entry = entries_[place - 1];
        return entry.hash == hash && entry.word == word;
    }
    /// Where the word is or belongs, or where another one stands that gives way to it.
    std::size_t find(std::uint64_t hash, std::u16string_view word) const {
        std::size_t place = hash & (places_.size() - 1);
        for (std::size_t tries = 1; tries < MostTries; ++tries) {
            if (places_[place] == 0 || isOf(places_[place], hash, word)) break;
            place = (place + 1) & (places_.size() - 1);
        }
        return place;
    }
    void grow() {
        places_.assign(places_.size() * 2, 0);
        for (std::uint32_t i = 0; i < entries_.size(); ++i)
            places_[find(entries_[i].hash, entries_[i].word)] = i + 1;
    }

    std::vector<std::uint32_t> places_;  // the numbers of entries, from 1
    std::vector<Entry> entries_;
};

/// What is collected of a text before it is known how many bits are worth while.
class Collection {
public:
    explicit Collection(std::u16string_view text)
        : classes_(classesOf(text, known_)), words_(text.size() / 24) {
        forEachSegment(classes_, known_, [&](const Segment& segment) {
            const auto units = viewOf(segment);
            if (segment.isUnspaced)
                unspaced_.push_back(units);
            else
                words_.add(units);
            if (segment.isUnspaced) unspacedCount_ += units.size();
        });
    }

    std::size_t usefulBits() const {
        return LeastBits + words_.entries().size() * MostBitsForWord +
               unspacedCount_ * MostBitsForUnspaced;
    }

    Data signatureOf(std::size_t bitCount) const {
        Data signature(HeaderSize + bitCount / 8);
        const auto count = static_cast<std::uint32_t>(bitCount);
        const auto set = [&](std::uint32_t position) {
            signature[HeaderSize + (position >> 3)] |=
                static_cast<std::uint8_t>(1 << (position & 7));
            return true;
        };
        const auto setPart = [&](std::uint64_t hash) {
            set(positionOf(static_cast<std::uint32_t>(hash), count));
        };
        for (const auto& entry : words_.entries()) forEachPart(entry.word, {true, true}, setPart);
        for (const auto units : unspaced_) forEachUnspacedPart(units, setPart);
        const std::uint32_t probes = probesFor(signature);
        for (const auto& entry : words_.entries()) forEachProbe(entry.hash, probes, count, set);
        signature[0] = Version;
        signature[1] = static_cast<std::uint8_t>(probes);
        signature[2] = static_cast<std::uint8_t>(std::lround(fillOf(signature) * 255));
        return signature;
    }

private:
    std::u16string_view viewOf(const Segment& segment) const {
        return std::u16string_view(classes_).substr(segment.start, segment.end - segment.start);
    }

    /// So many for each word that half of the bits are set in the end.
    std::uint32_t probesFor(Bytes signature) const {
        const auto count = static_cast<double>((signature.size() - HeaderSize) * 8);
        const double room = std::log((1 - fillOf(signature)) * 2);
        const auto words = static_cast<double>(std::max<std::size_t>(words_.entries().size(), 1));
        return static_cast<std::uint32_t>(std::clamp(count / words * room, 1.0, MostProbes));
    }

    const SignatureUnits& known_ = signatureUnits();
    std::u16string classes_;
    WordTable words_;
    std::vector<std::u16string_view> unspaced_;
    std::size_t unspacedCount_ = 0;
};

/// Of all but itself.
std::uint32_t checkOf(Bytes signature) {
    return CRC32(signature.subspan(HeaderSize)) ^ CRC32(signature.first(ChecksumPlace)) ^
           static_cast<std::uint32_t>(signature.size()) ^ signatureUnits().fingerprint;
}

}  // namespace

void addFactsOfStretch(std::vector<SignatureFact>& facts, std::u16string_view units,
                       StretchEdges edges) {
    const SignatureUnits& known = signatureUnits();
    const std::u16string classes = classesOf(units, known);
    forEachSegment(classes, known, [&](const Segment& segment) {
        const auto part =
            std::u16string_view(classes).substr(segment.start, segment.end - segment.start);
        const auto add = [&](std::uint64_t hash) { facts.push_back({hash, false}); };
        if (segment.isUnspaced) return forEachUnspacedPart(part, add);
        // Inside the stretch, a segment ends because no unit of its kind follows in the text.
        const StretchEdges own = {segment.start > 0 || edges.start,
                                  segment.end < units.size() || edges.end};
        if (own.start && own.end) facts.push_back({hashOfWord(part), true});
        forEachPart(part, own, add);
    });
}

Data signatureOfText(std::u16string_view text, std::size_t bytes) {
    const std::size_t room = bytes / 100 * Percentage;
    if (room < Overhead + LeastBits / 8) return {};
    const Collection collection(text);
    const std::size_t bitCount =
        std::min({(room - Overhead) * 8, collection.usefulBits() / 8 * 8, std::size_t{1} << 31});
    Data signature = collection.signatureOf(bitCount);
    putBigEndian(signature.data() + ChecksumPlace, checkOf(signature), 4);
    return signature;
}

PageSignature::PageSignature(Bytes bytes) {
    if (bytes.size() < HeaderSize + LeastBits / 8 ||
        bytes.size() > (std::size_t{1} << 28) + HeaderSize || bytes[0] != Version ||
        checkOf(bytes) != bigEndian32(bytes.data() + ChecksumPlace))
        return;
    bits_ = bytes.data() + HeaderSize;
    bitCount_ = static_cast<std::uint32_t>((bytes.size() - HeaderSize) * 8);
    probes_ = bytes[1];
    fill_ = bytes[2] / 255.0;
}

bool PageSignature::mayHave(const SignatureFact& fact) const {
    if (!fact.isWord) return hasBit(positionOf(static_cast<std::uint32_t>(fact.hash), bitCount_));
    return forEachProbe(fact.hash, probes_, bitCount_,
                        [&](std::uint32_t position) { return hasBit(position); });
}

bool PageSignature::mayHave(std::span<const SignatureFact> facts) const {
    return bitCount_ == 0 ||
           std::ranges::all_of(facts, [&](const SignatureFact& fact) { return mayHave(fact); });
}

double PageSignature::errorRate(std::span<const SignatureFact> facts) const {
    // Parts of words are common ones: many say hardly more than a few.
    constexpr std::size_t MostParts = 4;
    const bool hasWord = std::ranges::any_of(facts, &SignatureFact::isWord);
    return std::pow(fill_, hasWord ? probes_ : std::min(facts.size(), MostParts));
}

}  // namespace velmo::detail
