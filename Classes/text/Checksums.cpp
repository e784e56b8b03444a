// libdeflate computes the CRC with the machine's own instructions. Its variant differs from the
// library's in where the register starts and how it ends, which the Register sets right. Units go
// through a block of bytes, as a call for each two bytes would cost more than the checksum.
#include <velmocore/text/Checksums.h>

#include <libdeflate.h>

#include "text/UnitFold.h"

namespace velmo {
namespace {

/// The running checksum. libdeflate inverts the register before and after each call: the
/// complement of the register is what it takes and gives.
class Register {
public:
    void add(const void* bytes, std::size_t size) {
        if (size) inverted_ = libdeflate_crc32(inverted_, bytes, size);
    }
    std::uint32_t value() const { return ~inverted_; }

private:
    std::uint32_t inverted_ = 0xFFFFFFFF;
};

/// Takes units, high byte first, and feeds them in blocks.
class UnitRegister {
public:
    void add(char16_t unit) {
        // Written byte by byte, so that stored values are the same on machines of either byte
        // order.
        block_[2 * filled_] = static_cast<std::uint8_t>(unit >> 8);
        block_[2 * filled_ + 1] = static_cast<std::uint8_t>(unit);
        if (++filled_ == BlockUnits) flush();
    }
    std::uint32_t value() {
        flush();
        return register_.value();
    }

private:
    // 1 KB on the stack: the call is paid for, and the block stays in the first cache.
    static constexpr std::size_t BlockUnits = 512;

    void flush() {
        register_.add(block_, 2 * filled_);
        filled_ = 0;
    }

    Register register_;
    std::size_t filled_ = 0;
    std::uint8_t block_[2 * BlockUnits];
};

}  // namespace

std::uint32_t CRC32(Bytes bytes) {
    Register crc;
    crc.add(bytes.data(), bytes.size());
    return crc.value();
}

std::uint32_t CRC32UniCharsUsingConversionTable(std::u16string_view units,
                                                const ConversionTable* table) {
    return detail::withFold(table, [&](const auto& fold) {
        UnitRegister crc;
        for (char16_t unit : units) crc.add(fold(unit));
        return crc.value();
    });
}

std::uint32_t caseInsensitiveCrc32UsingCharactersPartOfCharacterSetRep(std::u16string_view string,
                                                                       const CharacterSetRep* set) {
    if (!set) return 0;
    const detail::UpperFold upper;
    UnitRegister crc;
    for (char16_t unit : string)
        if (set->contains(unit)) crc.add(upper(unit));
    return crc.value();
}

std::uint32_t caseInsensitiveCrc32ByRemovingNonAlphaCharacters(std::u16string_view string) {
    return caseInsensitiveCrc32UsingCharactersPartOfCharacterSetRep(string,
                                                                    &alphaCharacterSetRep());
}

std::uint32_t caseInsensitiveCrc32ByRemovingNonAlphaNumericCharacters(std::u16string_view string) {
    return caseInsensitiveCrc32UsingCharactersPartOfCharacterSetRep(string,
                                                                    &alphaNumCharacterSetRep());
}

}  // namespace velmo
