#include <velmocore/storage/Digests.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Digests, PublishedVectors) {
    const char* const digits = "12345678901234567890123456789012345678901234567890123456789012345678901234567890";
    const std::tuple<std::string, const char*, const char*> cases[] = {
        // MD5 of RFC 1321, SHA-1 of FIPS 180 and RFC 3174.
        {"", "d41d8cd98f00b204e9800998ecf8427e", "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72", "a9993e364706816aba3e25717850c26c9cd0d89d"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0", nullptr},
        {digits, "57edf4a22be3c955ac49da2e2107b67a", nullptr},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", nullptr,
         "84983e441c3bd26ebaae4aa1f95129e5e54670f1"},
        {std::string(1000000, 'a'), nullptr, "34aa973cd4c4daa4f61eeb2bdbad27316534016f"},
    };
    for (const auto& [text, md5, sha1] : cases) {
        if (md5) { EXPECT_EQ(MD5DigestStringValue(Bytes(text)).utf8(), md5); }
        if (sha1) { EXPECT_EQ(SHA1DigestStringValue(Bytes(text)).utf8(), sha1); }
    }
    EXPECT_EQ(hexStringValue(Data{0x0A, 0xFF}), u"0aff");
    EXPECT_EQ(hexStringValue({}), u"");
}

TEST(Digests, PiecesAreTheWhole) {
    const std::string text = test::readPage("httpd-de-iso-8859-1.html");
    for (const std::size_t piece : {std::size_t{1}, std::size_t{63}, std::size_t{64}, std::size_t{1000}}) {
        isc_md5_t md5;
        isc_sha1_t sha1;
        isc_md5_init(md5);
        isc_sha1_init(sha1);
        for (Bytes rest = Bytes(text); !rest.empty(); rest = rest.subspan(std::min(piece, rest.size()))) {
            isc_md5_update(md5, rest.first(std::min(piece, rest.size())));
            isc_sha1_update(sha1, rest.first(std::min(piece, rest.size())));
        }
        std::array<std::uint8_t, MD5DigestSize> md5Digest;
        std::array<std::uint8_t, SHA1DigestSize> sha1Digest;
        isc_md5_final(md5, md5Digest);
        isc_sha1_final(sha1, sha1Digest);
        EXPECT_EQ(md5Digest, MD5Digest(Bytes(text)));
        EXPECT_EQ(sha1Digest, SHA1Digest(Bytes(text)));
        // Ended and forgotten contexts are those of no bytes.
        isc_md5_final(md5, md5Digest);
        EXPECT_EQ(md5Digest, MD5Digest({}));
        isc_sha1_init(sha1);
        isc_sha1_update(sha1, Bytes(text));
        isc_sha1_invalidate(sha1);
        isc_sha1_update(sha1, Bytes(text));
        isc_sha1_final(sha1, sha1Digest);
        EXPECT_EQ(sha1Digest, SHA1Digest({}));
    }
}

TEST(Digests, SaltComesInEveryRound) {
    const auto hash = [](const std::string& text) { return SHA1DigestStringValue(Bytes(text)).utf8(); };
    const std::string salt = "K7Q.XM27182818_ZEND-";
    const std::string once = hash("secret" + salt);
    EXPECT_EQ(saltedHash(u"secret").utf8(), once);
    EXPECT_EQ(saltedHash(u"secret", {.times = 0}).utf8(), once);
    EXPECT_EQ(saltedHash(u"secret", {.times = 3}).utf8(), hash(hash(once + salt) + salt));
    EXPECT_EQ(saltedHash(u"secret", {.salt = String()}).utf8(), hash("secret"));
    EXPECT_EQ(saltedHash(u"\u00E4", {.salt = u"", .encoding = ISOLatin1StringEncoding}).utf8(), hash("\xE4"));
    EXPECT_TRUE(saltedHash(u"").isAbsent());
    EXPECT_TRUE(saltedHash(u"\u0416", {.encoding = ISOLatin1StringEncoding}).isAbsent());
}

}  // namespace
}  // namespace velmo
