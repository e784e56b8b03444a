// A string is one block: the count of owners, the length, and the units behind them. The builder
// makes such a block from the start and leaves room for the head, so that finishing a text writes
// the head and copies nothing. malloc() and not new, as only realloc() can grow a block in place.
#include <velmocore/platform/String.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <new>
#include <ostream>

#include "platform/LargePages.h"
#include "platform/UnitHash.h"
#include "platform/Utf8.h"

namespace velmo {
namespace {

constexpr std::size_t MaxUnits = (SIZE_MAX / 2 - 64) / sizeof(char16_t);

/// What a block is replaced by that got too small, so that appending unit by unit stays linear. The
/// first one is as large as was asked for, which often is enough; who needs a second one goes on
/// appending. Long ones grow by half only, as old and new stand side by side for a while.
constexpr std::size_t nextCapacity(std::size_t capacity) {
    constexpr std::size_t Least = 256, Long = 1 << 20;
    if (capacity == 0) return 0;
    return std::max(Least, capacity + (capacity < Long ? capacity : capacity / 2));
}

}  // namespace

String::String(std::u16string_view units) {
    if (units.data() == nullptr) return;
    if (units.empty()) {
        *this = empty();
        return;
    }
    // Most strings are made here: the block is exact, and nothing needs to be looked at again.
    if (units.size() > MaxUnits) throw std::bad_alloc();
    void* block = std::malloc(sizeof(Rep) + units.size() * sizeof(char16_t));
    if (!block) throw std::bad_alloc();
    rep_ = new (block) Rep{1, units.size()};
    std::char_traits<char16_t>::copy(rep_->units(), units.data(), units.size());
}

String String::fromUTF8(std::string_view bytes) {
    StringBuilder builder;
    builder.commit(detail::decodeUtf8(bytes, builder.prepare(bytes.size() + detail::Utf8Slack)));
    return builder.finish();
}

const String& String::empty() noexcept {
    // Counts an owner that never goes, so the count never falls to 0.
    static Rep rep{2, 0};
    static const String string(&rep);
    return string;
}

std::string String::utf8() const { return velmo::utf8(view()); }

String String::substring(Range range) const {
    if (!rep_ || !range.isFound()) return {};
    const std::size_t start = std::min<std::size_t>(range.location, length());
    const std::size_t count = std::min<std::size_t>(range.length, length() - start);
    if (count == length()) return *this;
    return String(view().substr(start, count));
}

String String::joined(std::u16string_view first, std::u16string_view second) {
    if (!first.data() && !second.data()) return {};
    StringBuilder builder(first.size() + second.size());
    builder.append(first);
    builder.append(second);
    return builder.finish();
}

std::size_t detail::hashOfText(std::u16string_view units) noexcept {
    return hashOfUnits(units, hashSeed());
}

void String::destroy(Rep* rep) noexcept { std::free(rep); }

std::ostream& operator<<(std::ostream& stream, const String& string) {
    return stream << string.utf8();
}

std::string utf8(std::u16string_view units) {
    std::string bytes(units.size() * 3, '\0');
    bytes.resize(detail::encodeUtf8(units, bytes.data()));
    return bytes;
}

StringBuilder::~StringBuilder() {
    if (units_) std::free(reinterpret_cast<String::Rep*>(units_) - 1);
}

void StringBuilder::grow(std::size_t count) {
    if (count > MaxUnits - length_) throw std::bad_alloc();
    const std::size_t capacity =
        std::max(length_ + count, std::min(nextCapacity(capacity_), MaxUnits));
    void* old = units_ ? reinterpret_cast<String::Rep*>(units_) - 1 : nullptr;
    const std::size_t bytes = sizeof(String::Rep) + capacity * sizeof(char16_t);
    void* block = std::realloc(old, bytes);
    if (!block) throw std::bad_alloc();
    detail::wantLargePages(block, bytes);
    units_ = reinterpret_cast<char16_t*>(static_cast<String::Rep*>(block) + 1);
    capacity_ = capacity;
}

std::u16string_view StringBuilder::makeRoomFor(std::u16string_view units) {
    // The array may move, and what is to be appended with it.
    const std::less<const char16_t*> before;
    const bool isOwn = units_ && !before(units.data(), units_) && before(units.data(), end());
    const std::size_t offset = isOwn ? static_cast<std::size_t>(units.data() - units_) : 0;
    grow(units.size());
    return isOwn ? view().substr(offset, units.size()) : units;
}

String StringBuilder::finish() { return length_ == 0 ? String::empty() : finishWithTail(0); }

String StringBuilder::finishWithTail(std::size_t count) {
    void* block = reinterpret_cast<String::Rep*>(units_) - 1;
    const std::size_t used = length_ + count;
    // A block that is nearly full stays as it is; otherwise the rest goes back.
    if (capacity_ - used > used / 16 + 16) {
        void* shrunk = std::realloc(block, sizeof(String::Rep) + used * sizeof(char16_t));
        // A refusal to shrink is no failure: the larger block is as good.
        if (shrunk) block = shrunk;
    }
    auto* rep = new (block) String::Rep{1, length_};
    units_ = nullptr;
    length_ = capacity_ = 0;
    return String(rep);
}

}  // namespace velmo
