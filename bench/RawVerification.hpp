#pragma once

#include <openssl/evp.h>

#include <memory>
#include <string_view>

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

/// Parses with expat, and counts elements and characters.
void parseByExpat(std::string_view document);

} // namespace bench
