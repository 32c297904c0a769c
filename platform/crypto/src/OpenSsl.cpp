#include "OpenSsl.hpp"

#include <openssl/err.h>

#include <climits>

namespace bedrock::openssl {

namespace {

void clearErrors() noexcept {
    if (ERR_peek_error() != 0) // checking is cheaper
        ERR_clear_error();
}

} // namespace

ErrorScope::ErrorScope() noexcept {
    clearErrors();
}

ErrorScope::~ErrorScope() {
    clearErrors();
}

std::string withErrors(const std::string& sentence) {
    std::string texts;
    const char* data = nullptr;
    int flags = 0;
    while (const unsigned long error = ERR_get_error_all(nullptr, nullptr, nullptr, &data, &flags)) {
        const char* reason = ERR_reason_error_string(error);
        texts += texts.empty() ? " (" : "; ";
        texts += reason ? reason : "error " + std::to_string(error);
        if ((flags & ERR_TXT_STRING) && data && *data)
            texts += std::string(": ") + data;
    }
    if (texts.empty())
        return sentence;
    const bool isEnded = !sentence.empty() && sentence.back() == '.';
    return sentence.substr(0, sentence.size() - (isEnded ? 1 : 0)) + texts + ").";
}

BioPtr readingBio(const std::vector<unsigned char>& bytes) {
    if (bytes.size() > static_cast<std::size_t>(INT_MAX))
        throw std::bad_alloc();
    // OpenSSL takes a null pointer for an error, even with no bytes.
    const void* start = bytes.empty() ? static_cast<const void*>("") : bytes.data();
    return made(BioPtr(BIO_new_mem_buf(start, static_cast<int>(bytes.size()))));
}

std::vector<unsigned char> toBytes(const BIGNUM& number) {
    std::vector<unsigned char> bytes(static_cast<std::size_t>(BN_num_bytes(&number)));
    BN_bn2bin(&number, bytes.data());
    return bytes;
}

BnPtr toNumber(const std::vector<unsigned char>& bytes) {
    BnPtr number = made(BnPtr(BN_secure_new()));
    if (!BN_bin2bn(bytes.data(), static_cast<int>(bytes.size()), number.get()))
        throw std::bad_alloc();
    return number;
}

BnPtr getNumber(const EVP_PKEY& key, const char* name) {
    BnPtr number = made(BnPtr(BN_secure_new()));
    BIGNUM* target = number.get();
    return EVP_PKEY_get_bn_param(&key, name, &target) ? std::move(number) : nullptr;
}

} // namespace bedrock::openssl
