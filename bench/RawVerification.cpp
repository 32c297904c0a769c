#include "RawVerification.hpp"

#include <expat.h>

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
