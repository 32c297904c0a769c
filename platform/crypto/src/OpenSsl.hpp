#pragma once

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>
#include <openssl/pkcs12.h>
#include <openssl/provider.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

#include <memory>
#include <new>
#include <string>
#include <vector>

/// @file
/// Owners for OpenSSL's objects, and its error queue as text. Internal.

namespace bedrock::openssl {

template <auto Free>
struct Deleter {
    template <typename T>
    void operator()(T* object) const noexcept {
        Free(object);
    }
};

struct StackDeleter {
    void operator()(STACK_OF(X509) * stack) const noexcept { sk_X509_pop_free(stack, X509_free); }
};

/// Frees the list alone.
struct CrlStackDeleter {
    void operator()(STACK_OF(X509_CRL) * stack) const noexcept { sk_X509_CRL_free(stack); }
};

using BioPtr = std::unique_ptr<BIO, Deleter<BIO_free>>;
using BnCtxPtr = std::unique_ptr<BN_CTX, Deleter<BN_CTX_free>>;
using BnPtr = std::unique_ptr<BIGNUM, Deleter<BN_clear_free>>;
using CrlPtr = std::unique_ptr<X509_CRL, Deleter<X509_CRL_free>>;
using CrlStackPtr = std::unique_ptr<STACK_OF(X509_CRL), CrlStackDeleter>;
using LibraryPtr = std::unique_ptr<OSSL_LIB_CTX, Deleter<OSSL_LIB_CTX_free>>;
using MdCtxPtr = std::unique_ptr<EVP_MD_CTX, Deleter<EVP_MD_CTX_free>>;
using MdPtr = std::unique_ptr<EVP_MD, Deleter<EVP_MD_free>>;
using MontgomeryPtr = std::unique_ptr<BN_MONT_CTX, Deleter<BN_MONT_CTX_free>>;
using ParamBuilderPtr = std::unique_ptr<OSSL_PARAM_BLD, Deleter<OSSL_PARAM_BLD_free>>;
using ParamsPtr = std::unique_ptr<OSSL_PARAM, Deleter<OSSL_PARAM_free>>;
using Pkcs8Ptr = std::unique_ptr<PKCS8_PRIV_KEY_INFO, Deleter<PKCS8_PRIV_KEY_INFO_free>>;
using Pkcs12Ptr = std::unique_ptr<PKCS12, Deleter<PKCS12_free>>;
using PkeyCtxPtr = std::unique_ptr<EVP_PKEY_CTX, Deleter<EVP_PKEY_CTX_free>>;
using PkeyPtr = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY_free>>;
using ProviderPtr = std::unique_ptr<OSSL_PROVIDER, Deleter<OSSL_PROVIDER_unload>>;
using StorePtr = std::unique_ptr<X509_STORE, Deleter<X509_STORE_free>>;
using StoreCtxPtr = std::unique_ptr<X509_STORE_CTX, Deleter<X509_STORE_CTX_free>>;
using X509Ptr = std::unique_ptr<X509, Deleter<X509_free>>;
using X509StackPtr = std::unique_ptr<STACK_OF(X509), StackDeleter>;

/// Limits the error queue of this thread to one operation: the queue is empty at its start and at its end, even after
/// an exception.
class ErrorScope {
public:
    ErrorScope() noexcept;
    ~ErrorScope();
    ErrorScope(const ErrorScope&) = delete;
    ErrorScope& operator=(const ErrorScope&) = delete;
};

/// The sentence with the content of the error queue, oldest first: "It failed." becomes "It failed (one; two)."
/// Empties the queue.
std::string withErrors(const std::string& sentence);

/// Throws `E` with `message` and the content of the error queue.
template <typename E>
[[noreturn]] void fail(const std::string& message) {
    throw E(withErrors(message));
}

/// Passes on the result of one of OpenSSL's constructors. Null means that memory ran out.
template <typename Owner>
Owner made(Owner owner) {
    if (!owner)
        throw std::bad_alloc();
    return owner;
}

/// Secret bytes, overwritten on destruction.
class Secret {
public:
    Secret() = default;
    explicit Secret(std::vector<unsigned char> bytes) noexcept : bytes(std::move(bytes)) {}
    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;
    ~Secret() { OPENSSL_cleanse(bytes.data(), bytes.size()); }

    const std::vector<unsigned char>& get() const noexcept { return bytes; }

private:
    std::vector<unsigned char> bytes;
};

/// A stream that reads the bytes in place; they must outlive it.
BioPtr readingBio(const std::vector<unsigned char>& bytes);

/// Big-endian, without leading zeros.
std::vector<unsigned char> toBytes(const BIGNUM& number);

/// Big-endian, in memory that is overwritten on destruction.
BnPtr toNumber(const std::vector<unsigned char>& bytes);

/// A number of a key, such as OSSL_PKEY_PARAM_RSA_N; null if the key has no number with this name.
BnPtr getNumber(const EVP_PKEY& key, const char* name);

/// The DER form of an object, from one of the i2d functions.
template <auto Encode, typename T>
std::vector<unsigned char> toDer(T& object) {
    const int length = Encode(&object, nullptr);
    std::vector<unsigned char> der(length > 0 ? static_cast<std::size_t>(length) : 0);
    unsigned char* end = der.data();
    if (length <= 0 || Encode(&object, &end) != length)
        der.clear();
    return der;
}

/// An object from its DER form, by one of the d2i functions; null if the bytes have another form, or more bytes
/// follow.
template <typename Owner, auto Decode>
Owner fromDer(const unsigned char* bytes, std::size_t size) {
    const unsigned char* position = bytes;
    if (size > static_cast<std::size_t>(INT32_MAX))
        return nullptr;
    Owner owner(Decode(nullptr, &position, static_cast<long>(size)));
    return position == bytes + size ? std::move(owner) : nullptr;
}

} // namespace bedrock::openssl
