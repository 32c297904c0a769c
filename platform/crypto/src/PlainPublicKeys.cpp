#include "PlainPublicKeys.hpp"

#include "RsaPublicKeyScanner.hpp"

#include <bedrock/crypto/utils/Exceptions.hpp>

#include <openssl/core_names.h>

#include <algorithm>
#include <new>

namespace bedrock::crypto {

namespace {

using namespace std::string_view_literals;
using Bytes = std::vector<unsigned char>;
using openssl::PkeyPtr;

constexpr NamedCurve CURVES[] = {
    {"P-256", "prime256v1",
     "\x30\x59\x30\x13\x06\x07\x2A\x86\x48\xCE\x3D\x02\x01\x06\x08\x2A\x86\x48\xCE\x3D\x03\x01\x07\x03\x42\x00"sv,
     65},
    {"P-384", "secp384r1",
     "\x30\x76\x30\x10\x06\x07\x2A\x86\x48\xCE\x3D\x02\x01\x06\x05\x2B\x81\x04\x00\x22\x03\x62\x00"sv, 97},
    {"P-521", "secp521r1",
     "\x30\x81\x9B\x30\x10\x06\x07\x2A\x86\x48\xCE\x3D\x02\x01\x06\x05\x2B\x81\x04\x00\x23\x03\x81\x86\x00"sv,
     133}};

template <typename Predicate>
const NamedCurve* find(const Predicate& isWanted) {
    const auto* const found = std::find_if(std::begin(CURVES), std::end(CURVES), isWanted);
    return found == std::end(CURVES) ? nullptr : found;
}

PkeyPtr make(const char* algorithm, OSSL_PARAM_BLD& builder) {
    const openssl::ParamsPtr params = openssl::made(openssl::ParamsPtr(OSSL_PARAM_BLD_to_param(&builder)));
    const openssl::PkeyCtxPtr context =
        openssl::made(openssl::PkeyCtxPtr(EVP_PKEY_CTX_new_from_name(nullptr, algorithm, nullptr)));
    EVP_PKEY* key = nullptr;
    if (EVP_PKEY_fromdata_init(context.get()) != 1 ||
        EVP_PKEY_fromdata(context.get(), &key, EVP_PKEY_PUBLIC_KEY, params.get()) != 1)
        openssl::fail<utils::InvalidKey>("The numbers make no public key.");
    return PkeyPtr(key);
}

PkeyPtr makeRsaKey(const BIGNUM& modulus, const BIGNUM& exponent) {
    const openssl::ParamBuilderPtr builder = openssl::made(openssl::ParamBuilderPtr(OSSL_PARAM_BLD_new()));
    if (!OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_RSA_N, &modulus) ||
        !OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_RSA_E, &exponent))
        throw std::bad_alloc();
    return make("RSA", *builder);
}

/// An element of DER with this tag, of up to 65,535 bytes.
Bytes element(unsigned char tag, const Bytes& content) {
    const auto byte = [&content](unsigned shift) {
        return static_cast<unsigned char>(content.size() >> shift & 0xFF);
    };
    Bytes der{tag};
    if (content.size() < 0x80)
        der.push_back(byte(0));
    else if (content.size() < 0x100)
        der.insert(der.end(), {0x81, byte(0)});
    else
        der.insert(der.end(), {0x82, byte(8), byte(0)});
    der.insert(der.end(), content.begin(), content.end());
    return der;
}

Bytes number(const BIGNUM& value) {
    Bytes bytes = openssl::toBytes(value);
    if (bytes.empty() || bytes.front() >= 0x80)
        bytes.insert(bytes.begin(), 0); // it is positive
    return element(0x02, bytes);
}

Bytes joined(Bytes first, const Bytes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

} // namespace

const NamedCurve* findCurve(const std::string& name) {
    return find([&name](const NamedCurve& one) { return name == one.name; });
}

const NamedCurve* findCurveOf(const EVP_PKEY& key) {
    char name[64];
    std::size_t size = 0;
    if (!EVP_PKEY_is_a(&key, "EC") || !EVP_PKEY_get_group_name(&key, name, sizeof name, &size))
        return nullptr;
    return find([&name](const NamedCurve& one) { return std::string_view(name) == one.openSslName; });
}

void throwIfUnusableNumbers(int modulusBits, const BIGNUM& exponent) {
    constexpr int MOST_BITS = 16384;
    constexpr int MOST_EXPONENT_BITS = 64;
    if (modulusBits > MOST_BITS || BN_is_one(&exponent) || !BN_is_odd(&exponent) ||
        BN_num_bits(&exponent) > MOST_EXPONENT_BITS)
        throw utils::InvalidKey("The RSA key can't be used.");
}

PkeyPtr makeEcKey(const NamedCurve& curve, const unsigned char* point, std::size_t size) {
    const openssl::ParamBuilderPtr builder = openssl::made(openssl::ParamBuilderPtr(OSSL_PARAM_BLD_new()));
    if (!OSSL_PARAM_BLD_push_utf8_string(builder.get(), OSSL_PKEY_PARAM_GROUP_NAME, curve.openSslName, 0) ||
        !OSSL_PARAM_BLD_push_octet_string(builder.get(), OSSL_PKEY_PARAM_PUB_KEY, point, size))
        throw std::bad_alloc();
    return make("EC", *builder);
}

Bytes encodeRsaKey(const BIGNUM& modulus, const BIGNUM& exponent) {
    // rsaEncryption and its absent parameters (RFC 8017 appendix A.1)
    const Bytes algorithm{0x06, 0x09, 0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x01, 0x01, 0x05, 0x00};
    const Bytes key = element(0x30, joined(number(modulus), number(exponent)));
    const Bytes bits = element(0x03, joined({0}, key)); // no unused bits
    return element(0x30, joined(element(0x30, algorithm), bits));
}

PkeyPtr readPlainPublicKey(const Bytes& der) {
    const std::string_view text(reinterpret_cast<const char*>(der.data()), der.size());
    const NamedCurve* const curve = find([text](const NamedCurve& one) {
        return text.size() == one.keyStart.size() + one.pointSize &&
               text.substr(0, one.keyStart.size()) == one.keyStart;
    });
    if (curve != nullptr)
        return makeEcKey(*curve, der.data() + curve->keyStart.size(), curve->pointSize);
    const auto numbers = scanRsaPublicKey(der);
    if (!numbers)
        return nullptr;
    throwIfUnusableNumbers(BN_num_bits(numbers->modulus.get()), *numbers->exponent);
    return makeRsaKey(*numbers->modulus, *numbers->exponent);
}

} // namespace bedrock::crypto
