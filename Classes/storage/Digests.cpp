// The algorithms are OpenSSL's; here is only what their callers need: contexts that give a result
// in whatever order they are used, and the salted hash.
#include <velmocore/storage/Digests.h>

#include <openssl/evp.h>

#include <new>
#include <optional>
#include <string>
#include <utility>

namespace velmo {
namespace {

/// What OpenSSL refuses it refuses for want of memory, or because a policy of the system has
/// taken the algorithm away: both end the same way.
void require(bool done) {
    if (!done) throw std::bad_alloc();
}

template <std::size_t Size>
std::array<std::uint8_t, Size> digestOf(Bytes bytes, const EVP_MD* algorithm) {
    // Not initialised, as all of it is written or an exception leaves.
    std::array<std::uint8_t, Size> digest;
    require(EVP_Digest(bytes.data(), bytes.size(), digest.data(), nullptr, algorithm, nullptr));
    return digest;
}

}  // namespace

String hexStringValue(Bytes bytes) {
    constexpr std::u16string_view Digits = u"0123456789abcdef";
    StringBuilder out(2 * bytes.size());
    for (const std::uint8_t byte : bytes) {
        out.append(Digits[byte >> 4]);
        out.append(Digits[byte & 15]);
    }
    return out.finish();
}

std::array<std::uint8_t, MD5DigestSize> MD5Digest(Bytes bytes) {
    return digestOf<MD5DigestSize>(bytes, EVP_md5());
}
std::array<std::uint8_t, SHA1DigestSize> SHA1Digest(Bytes bytes) {
    return digestOf<SHA1DigestSize>(bytes, EVP_sha1());
}

struct DigestContext::State {
    EVP_MD_CTX* openssl = EVP_MD_CTX_new();
    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() { EVP_MD_CTX_free(openssl); }  // clears what it held
};

DigestContext::DigestContext() noexcept = default;
DigestContext::DigestContext(DigestContext&&) noexcept = default;
DigestContext& DigestContext::operator=(DigestContext&&) noexcept = default;
DigestContext::~DigestContext() = default;

/// The steps of both algorithms.
struct DigestSteps {
    static void init(DigestContext& context, const EVP_MD* algorithm) {
        // Made whole first: if it is refused, the context is what it was.
        auto state = std::make_unique<DigestContext::State>();
        require(state->openssl && EVP_DigestInit_ex(state->openssl, algorithm, nullptr));
        context.state_ = std::move(state);
    }
    static void update(DigestContext& context, Bytes bytes) {
        if (context.state_)
            require(EVP_DigestUpdate(context.state_->openssl, bytes.data(), bytes.size()));
    }
    static void final(DigestContext& context, std::uint8_t* digest, const EVP_MD* algorithm) {
        // A context that was not started gives the digest of no bytes, and never garbage.
        if (!context.state_) init(context, algorithm);
        require(EVP_DigestFinal_ex(context.state_->openssl, digest, nullptr));
        invalidate(context);
    }
    static void invalidate(DigestContext& context) noexcept { context.state_.reset(); }
};

void isc_md5_init(isc_md5_t& context) { DigestSteps::init(context, EVP_md5()); }
void isc_md5_update(isc_md5_t& context, Bytes bytes) { DigestSteps::update(context, bytes); }
void isc_md5_final(isc_md5_t& context, std::span<std::uint8_t, MD5DigestSize> digest) {
    DigestSteps::final(context, digest.data(), EVP_md5());
}
void isc_md5_invalidate(isc_md5_t& context) noexcept { DigestSteps::invalidate(context); }

void isc_sha1_init(isc_sha1_t& context) { DigestSteps::init(context, EVP_sha1()); }
void isc_sha1_update(isc_sha1_t& context, Bytes bytes) { DigestSteps::update(context, bytes); }
void isc_sha1_final(isc_sha1_t& context, std::span<std::uint8_t, SHA1DigestSize> digest) {
    DigestSteps::final(context, digest.data(), EVP_sha1());
}
void isc_sha1_invalidate(isc_sha1_t& context) noexcept { DigestSteps::invalidate(context); }

String saltedHash(const String& string, const SaltedHashOptions& options) {
    if (string.isEmpty()) return {};
    String text = string;
    std::uint64_t round = 0;
    do {
        const std::optional<Data> bytes =
            dataUsingEncoding(std::u16string(text).append(options.salt), options.encoding);
        if (!bytes) return {};
        text = SHA1DigestStringValue(*bytes);
    } while (++round < options.times);
    return text;
}

}  // namespace velmo
