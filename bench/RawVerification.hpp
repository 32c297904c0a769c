#pragma once

#include <openssl/evp.h>

#include <memory>
#include <string_view>
#include <vector>

namespace bench {

/// OpenSSL's digest, with one context for all contents.
class RawDigest {
public:
    explicit RawDigest(const EVP_MD* method);

    void operator()(std::string_view content);

private:
    const EVP_MD* method;
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context;
};

/// One signature value by RSA of 2048 bits, and its check with a key that is already loaded.
class RawRsa {
public:
    /// @param method  the digest of what is signed
    explicit RawRsa(const EVP_MD* method);

    void verify() const;

private:
    std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> makeContext() const;

    const EVP_MD* method;
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key;
    std::vector<unsigned char> digest;
    std::vector<unsigned char> value;
};

/// Parses with expat, and counts elements and characters.
void parseByExpat(std::string_view document);

} // namespace bench
