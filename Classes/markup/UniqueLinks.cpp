// A hash table of places in the list, and not of strings: a link that the list has already is
// found without making a String of it, and most links of a page come more than once.
#include "markup/UniqueLinks.h"

#include <algorithm>
#include <cstring>
#include <random>

#include "text/ByteScan.h"

namespace velmo::detail {
namespace {

std::uint64_t mixed(std::uint64_t a, std::uint64_t b) {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

/// Differs from run to run, so that no page can be made whose links all share a slot.
std::uint64_t seed() {
    static const std::uint64_t value = [] {
        std::random_device device;
        return static_cast<std::uint64_t>(device()) << 32 | device();
    }();
    return value;
}

/// Up to eight units, as two words.
struct Words {
    std::uint64_t low, high;
};

Words wordsOf(std::u16string_view units) {
    Words words = {};
    std::memcpy(&words, units.data(), units.size() * sizeof(char16_t));
    return words;
}
Words wordsOf(std::string_view ascii) {
    char16_t units[8] = {};
    std::copy(ascii.begin(), ascii.end(), units);
    return wordsOf(std::u16string_view(units, 8));
}

Words eightAt(const char16_t* units) { return wordsOf(std::u16string_view(units, 8)); }
Words eightAt(const char* ascii) {
#if defined(__SSE2__)
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(ascii));
    Words words;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(&words),
                     _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
    return words;
#else
    return wordsOf(std::string_view(ascii, 8));
#endif
}

/// Eight units, or what is left of them, a step. ASCII has the hash of its units.
template <class Link>
std::uint64_t hashOf(Link link, std::uint64_t start) {
    constexpr std::uint64_t Odd = 0x9E3779B97F4A7C15;
    constexpr std::size_t Step = 8;
    std::uint64_t hash = start ^ link.size();
    for (std::size_t i = 0; i < link.size(); i += Step) {
        const Words words =
            link.size() - i >= Step ? eightAt(link.data() + i) : wordsOf(link.substr(i));
        hash = mixed(hash ^ words.low, words.high ^ start ^ Odd);
    }
    return mixed(hash, start ^ Odd);
}

bool isSame(const String& known, std::u16string_view link) { return known == link; }
bool isSame(const String& known, std::string_view link) {
    return known.length() == link.size() && scan::equalsWidened(known.characters(), link);
}

String stringOf(std::u16string_view link) { return link; }
String stringOf(std::string_view link) {
    StringBuilder units(link.size());
    scan::widen(link, units.data());
    units.commit(link.size());
    return units.finish();
}

}  // namespace

UniqueLinks::UniqueLinks(std::vector<String>& links) : links_(links), seed_(seed()) {}

std::size_t UniqueLinks::add(std::u16string_view link) { return addLink(link); }
std::size_t UniqueLinks::add(std::string_view link) { return addLink(link); }

template <class Link>
std::size_t UniqueLinks::addLink(Link link) {
    // Before the look-up, which needs a free slot to end at.
    if (links_.size() * 2 >= slots_.size()) grow();
    const std::uint64_t hash = hashOf(link, seed_);
    Slot& slot = slotFor(hash, link);
    if (!slot.number) {
        links_.push_back(stringOf(link));
        slot = {hash, links_.size()};
    }
    return slot.number - 1;
}

// A slot that is taken is followed by the next one: with half of them free, runs are short.
template <class Link>
UniqueLinks::Slot& UniqueLinks::slotFor(std::uint64_t hash, Link link) {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        Slot& slot = slots_[i];
        if (!slot.number || (slot.hash == hash && isSame(links_[slot.number - 1], link)))
            return slot;
    }
}

void UniqueLinks::grow() {
    std::vector<Slot> old = std::move(slots_);
    slots_.assign(old.empty() ? 128 : old.size() * 2, Slot());
    // Room for as many links as the table will take, so that both grow together.
    links_.reserve(slots_.size() / 2);
    for (const Slot& slot : old)
        if (slot.number) slotFor(slot.hash, links_[slot.number - 1].view()) = slot;
}

}  // namespace velmo::detail
