// ICU's converters, with what they do on their own put right: which bytes and units have no
// meaning, what stands for them, and that nothing is passed over in silence. A converter is kept
// open by its thread, as opening costs as much as decoding a page.
#include "platform/IcuConverter.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>

#include "platform/Surrogates.h"

namespace velmo::detail {
namespace {

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

/// Opening a converter costs as much as decoding a page, so that each thread keeps the last
/// few of them open.
class OpenConverters {
public:
    /// The converter of a name, which must live as long as the process; null if ICU has none.
    UConverter* get(const char* name) {
        Slot* slot = std::ranges::find(slots_, name, &Slot::name);
        if (slot == slots_.end()) {
            UErrorCode status = U_ZERO_ERROR;
            Converter opened(ucnv_open(name, &status), &ucnv_close);
            if (U_FAILURE(status)) return nullptr;
            slot = &slots_[next_++ % slots_.size()];
            *slot = {name, std::move(opened)};
        }
        ucnv_reset(slot->converter.get());
        return slot->converter.get();
    }

private:
    struct Slot {
        const char* name = nullptr;
        Converter converter{nullptr, &ucnv_close};
    };
    std::array<Slot, 6> slots_;
    std::size_t next_ = 0;
};

UConverter* openConverter(const char* name) {
    static thread_local OpenConverters open;
    return open.get(name);
}

/// What the callback for bytes without a meaning knows.
struct Reading {
    std::span<const ByteUnit> own;
    bool broken = false;
};

/// ICU's own callback writes U+001A instead of U+FFFD for single bytes of some encodings.
void replaceBytes(const void* context, UConverterToUnicodeArgs* arguments, const char* bytes,
                  std::int32_t length, UConverterCallbackReason reason, UErrorCode* status) {
    if (reason > UCNV_IRREGULAR) return;
    auto& reading = *static_cast<Reading*>(const_cast<void*>(context));
    char16_t unit = ReplacementUnit;
    if (length == 1)
        for (const ByteUnit& own : reading.own)
            if (own.byte == static_cast<std::uint8_t>(bytes[0])) unit = own.unit;
    reading.broken |= unit == ReplacementUnit;
    *status = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(arguments, &unit, 1, 0, status);
}

/// ICU's own callback for stopping passes over units that are not to be seen (soft hyphens, zero-
/// width spaces, ...), and the text comes back without them. This one leaves the error standing
/// for them too.
void refuseUnits(const void*, UConverterFromUnicodeArgs*, const char16_t*, std::int32_t, UChar32,
                 UConverterCallbackReason, UErrorCode*) {}

void replaceUnits(const void*, UConverterFromUnicodeArgs* arguments, const char16_t*, std::int32_t,
                  UChar32, UConverterCallbackReason reason, UErrorCode* status) {
    if (reason > UCNV_IRREGULAR) return;
    const char16_t question = u'?';
    const char16_t* source = &question;
    *status = U_ZERO_ERROR;
    ucnv_cbFromUWriteUChars(arguments, &source, source + 1, 0, status);
}

/// Applies the repairs whose byte is in the input at all.
void repair(std::span<const ByteRepair> repairs, Bytes bytes, std::span<char16_t> units) {
    const bool needed = !bytes.empty() && std::ranges::any_of(repairs, [&](const ByteRepair& r) {
        return std::memchr(bytes.data(), r.byte, bytes.size()) != nullptr;
    });
    if (!needed) return;
    for (char16_t& unit : units) {
        const auto hit = std::ranges::find(repairs, unit, &ByteRepair::given);
        if (hit != repairs.end()) unit = hit->meant;
    }
}

/// The text as ICU's encoder wants it, so that a repaired unit finds its byte again.
std::u16string unrepaired(std::span<const ByteRepair> repairs, std::u16string_view text) {
    std::u16string result(text);
    for (char16_t& unit : result) {
        const auto hit = std::ranges::find(repairs, unit, &ByteRepair::meant);
        if (hit != repairs.end() && unit != ReplacementUnit) unit = hit->given;
    }
    return result;
}

// ICU counts in 31 bits, so that long inputs go piece by piece.
constexpr std::size_t MaxPiece = 1u << 28;

}  // namespace

Decoding decodeWithIcu(const EncodingRow& row, Bytes bytes, std::span<char16_t> out) {
    UConverter* const converter = openConverter(row.decoder);
    if (!converter) return {.complete = false};
    Reading reading{row.own};
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter, &replaceBytes, &reading, nullptr, nullptr, &status);

    const char* source = charsOf(bytes).data();
    const char* const end = source + bytes.size();
    char16_t* target = out.data();
    char16_t* const limit = target + out.size();
    bool more = true;
    while (more) {
        const char* const piece = source + std::min<std::size_t>(end - source, MaxPiece);
        char16_t* const room = target + std::min<std::size_t>(limit - target, MaxPiece);
        status = U_ZERO_ERROR;
        ucnv_toUnicode(converter, &target, room, &source, piece, nullptr, piece == end, &status);
        more =
            status == U_BUFFER_OVERFLOW_ERROR ? target < limit : U_SUCCESS(status) && source < end;
    }
    ucnv_reset(converter);

    auto written = static_cast<std::size_t>(target - out.data());
    if (status == U_BUFFER_OVERFLOW_ERROR && written && isHighSurrogate(out[written - 1]))
        --written;
    repair(row.repairs, bytes, out.first(written));
    return {written, U_SUCCESS(status) != 0, reading.broken};
}

std::optional<Data> encodeWithIcu(const EncodingRow& row, std::u16string_view text, bool lossy) {
    UConverter* const converter = openConverter(row.encoder ? row.encoder : row.decoder);
    if (!converter) return std::nullopt;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFallback(converter, false);
    ucnv_setFromUCallBack(converter, lossy ? &replaceUnits : &refuseUnits, nullptr, nullptr,
                          nullptr, &status);
    std::u16string changed;
    if (!row.repairs.empty()) text = changed = unrepaired(row.repairs, text);

    Data result;
    char buffer[4096];
    const char16_t* source = text.data();
    const char16_t* const end = source + text.size();
    do {
        const char16_t* const piece = source + std::min<std::size_t>(end - source, MaxPiece);
        char* target = buffer;
        status = U_ZERO_ERROR;
        ucnv_fromUnicode(converter, &target, buffer + sizeof buffer, &source, piece, nullptr,
                         piece == end, &status);
        result.insert(result.end(), buffer, target);
    } while (status == U_BUFFER_OVERFLOW_ERROR || (U_SUCCESS(status) && source < end));
    ucnv_reset(converter);
    if (U_FAILURE(status)) return std::nullopt;
    return result;
}

}  // namespace velmo::detail
