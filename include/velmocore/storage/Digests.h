#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>

namespace velmo {

// MD5 (RFC 1321) and SHA-1 (FIPS 180): fingerprints of data, for telling files apart and for
// formats that hold them. Neither withstands someone who wants two files to look the same. No bytes
// have a digest too. Any thread may call these; sizes count bytes.
//
//     hexStringValue(SHA1Digest(Bytes("abc")));    // a9993e364706816aba3e25717850c26c9cd0d89d

/// The bytes of a digest.
inline constexpr std::size_t MD5DigestSize = 16;
inline constexpr std::size_t SHA1DigestSize = 20;

/// Lower-case hexadecimal, two digits a byte; the empty string for no bytes.
[[nodiscard]] VELMO_API String hexStringValue(Bytes bytes);

/// The digest of bytes, and the same in hexadecimal.
[[nodiscard]] VELMO_API std::array<std::uint8_t, MD5DigestSize> MD5Digest(Bytes bytes);
[[nodiscard]] VELMO_API std::array<std::uint8_t, SHA1DigestSize> SHA1Digest(Bytes bytes);
[[nodiscard]] inline String MD5DigestStringValue(Bytes bytes) {
    return hexStringValue(MD5Digest(bytes));
}
[[nodiscard]] inline String SHA1DigestStringValue(Bytes bytes) {
    return hexStringValue(SHA1Digest(bytes));
}

/// A digest that is fed piece by piece. Not to be shared between threads.
class VELMO_API DigestContext {
public:
    /// One that was not started.
    DigestContext() noexcept;
    DigestContext(DigestContext&&) noexcept;
    DigestContext& operator=(DigestContext&&) noexcept;
    ~DigestContext();

private:
    friend struct DigestSteps;
    struct State;
    std::unique_ptr<State> state_;  // none before the start and after the end
};
/// One for each algorithm, so that they are not mixed up.
class isc_md5_t : public DigestContext {};
class isc_sha1_t : public DigestContext {};

// Start, feed, give the result, forget everything. A context that was not started ignores
// what it is fed, and its result is that of no bytes. Giving the result ends the context.
//
//     isc_sha1_t context;
//     isc_sha1_init(context);
//     for (const char* part : {"a", "bc"}) isc_sha1_update(context, part);
//     std::array<std::uint8_t, SHA1DigestSize> digest;
//     isc_sha1_final(context, digest);
//     hexStringValue(digest);    // a9993e364706816aba3e25717850c26c9cd0d89d

VELMO_API void isc_md5_init(isc_md5_t& context);
VELMO_API void isc_md5_update(isc_md5_t& context, Bytes bytes);
VELMO_API void isc_md5_final(isc_md5_t& context, std::span<std::uint8_t, MD5DigestSize> digest);
VELMO_API void isc_md5_invalidate(isc_md5_t& context) noexcept;
VELMO_API void isc_sha1_init(isc_sha1_t& context);
VELMO_API void isc_sha1_update(isc_sha1_t& context, Bytes bytes);
VELMO_API void isc_sha1_final(isc_sha1_t& context, std::span<std::uint8_t, SHA1DigestSize> digest);
VELMO_API void isc_sha1_invalidate(isc_sha1_t& context) noexcept;

/// The salt of a salted hash that is given none.
inline constexpr char16_t DefaultSalt[] = u"K7Q.XM27182818_ZEND-";

/// How a salted hash is made.
struct SaltedHashOptions {
    String salt = DefaultSalt;                     ///< absent or empty for none
    StringEncoding encoding = UTF8StringEncoding;  ///< of the bytes that are hashed
    std::size_t times = 1;                         ///< 0 counts as 1
};
/// SHA-1, in hexadecimal, of the string with the salt after it; so many times over, each time
/// of the text before. Absent for an absent or empty string, and for one that the encoding
/// does not have. Not for passwords: it is fast to guess.
[[nodiscard]] VELMO_API String saltedHash(const String& string,
                                          const SaltedHashOptions& options = {});

}  // namespace velmo
