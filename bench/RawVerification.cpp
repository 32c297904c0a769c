#include "RawVerification.hpp"

#include <expat.h>
#include <openssl/rsa.h>

#include <cstddef>
#include <stdexcept>

namespace bench {

namespace {

void XMLCALL countElement(void* count, const XML_Char* /*name*/, const XML_Char** /*attributes*/) {
    ++*static_cast<std::size_t*>(count);
}

void XMLCALL countText(void* count, const XML_Char* /*text*/, int length) {
    *static_cast<std::size_t*>(count) += static_cast<std::size_t>(length);
}

void require(bool success, const char* what) {
    if (!success)
        throw std::runtime_error(what);
}

} // namespace

RawDigest::RawDigest(const EVP_MD* method) : method(method), context(EVP_MD_CTX_new(), EVP_MD_CTX_free) {
}

void RawDigest::operator()(std::string_view content) {
    unsigned char value[EVP_MAX_MD_SIZE];
    require(EVP_DigestInit_ex2(context.get(), method, nullptr) == 1 &&
                EVP_DigestUpdate(context.get(), content.data(), content.size()) == 1 &&
                EVP_DigestFinal_ex(context.get(), value, nullptr) == 1,
            "no digest");
}

RawRsa::RawRsa(const EVP_MD* method)
    : method(method), key(EVP_RSA_gen(2048), EVP_PKEY_free),
      digest(static_cast<std::size_t>(EVP_MD_get_size(method)), 'x') {
    const auto context = makeContext();
    std::size_t size = 0;
    require(EVP_PKEY_sign_init(context.get()) == 1 &&
                EVP_PKEY_CTX_set_signature_md(context.get(), method) == 1 &&
                EVP_PKEY_sign(context.get(), nullptr, &size, digest.data(), digest.size()) == 1,
            "no signature");
    value.resize(size);
    require(EVP_PKEY_sign(context.get(), value.data(), &size, digest.data(), digest.size()) == 1,
            "no signature");
}

void RawRsa::verify() const {
    const auto context = makeContext();
    require(EVP_PKEY_verify_init(context.get()) == 1 &&
                EVP_PKEY_CTX_set_signature_md(context.get(), method) == 1 &&
                EVP_PKEY_verify(context.get(), value.data(), value.size(), digest.data(), digest.size()) == 1,
            "the bare signature doesn't hold");
}

std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> RawRsa::makeContext() const {
    return {EVP_PKEY_CTX_new(key.get(), nullptr), EVP_PKEY_CTX_free};
}

void parseByExpat(std::string_view document) {
    std::size_t count = 0;
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate(nullptr),
                                                                              XML_ParserFree);
    XML_SetUserData(parser.get(), &count);
    XML_SetStartElementHandler(parser.get(), countElement);
    XML_SetCharacterDataHandler(parser.get(), countText);
    require(XML_Parse(parser.get(), document.data(), static_cast<int>(document.size()), 1) == XML_STATUS_OK,
            "not well-formed");
}

} // namespace bench
