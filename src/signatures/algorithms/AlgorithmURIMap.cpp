#include <opc/model/AlgorithmURIMap.hpp>

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>

namespace opc::model {

namespace {

constexpr std::uint32_t DIGEST_COUNT = 6;
constexpr std::uint32_t SIGNATURE_KEY_COUNT = 3;

template <typename Enumeration>
constexpr std::uint32_t number(Enumeration value) {
    return static_cast<std::uint32_t>(value);
}

void throwIfNotDigest(std::uint32_t value) {
    if (value >= DIGEST_COUNT)
        throw Exception("Internal error: Digest Method is not supported in algorithm map.");
}

[[noreturn]] void throwUnsupportedSignature() {
    throw Exception("Internal error: Signature Method is not supported in algorithm map.");
}

} // namespace

const std::map<AlgorithmTag, std::u16string>& AlgorithmURIMap::getTable() {
    static const std::map<AlgorithmTag, std::u16string> table = {
        {AlgorithmTag::TagMD5, u"http://www.w3.org/2001/04/xmldsig-more#md5"},
        {AlgorithmTag::TagSHA1, u"http://www.w3.org/2000/09/xmldsig#sha1"},
        {AlgorithmTag::TagSHA224, u"http://www.w3.org/2001/04/xmldsig-more#sha224"},
        {AlgorithmTag::TagSHA256, u"http://www.w3.org/2001/04/xmlenc#sha256"},
        {AlgorithmTag::TagSHA384, u"http://www.w3.org/2001/04/xmldsig-more#sha384"},
        {AlgorithmTag::TagSHA512, u"http://www.w3.org/2001/04/xmlenc#sha512"},
        {AlgorithmTag::TagRSAMD5, u"http://www.w3.org/2001/04/xmldsig-more#rsa-md5"},
        {AlgorithmTag::TagRSASHA1, u"http://www.w3.org/2000/09/xmldsig#rsa-sha1"},
        {AlgorithmTag::TagRSASHA224, u"http://www.w3.org/2001/04/xmldsig-more#rsa-sha224"},
        {AlgorithmTag::TagRSASHA256, u"http://www.w3.org/2001/04/xmldsig-more#rsa-sha256"},
        {AlgorithmTag::TagRSASHA384, u"http://www.w3.org/2001/04/xmldsig-more#rsa-sha384"},
        {AlgorithmTag::TagRSASHA512, u"http://www.w3.org/2001/04/xmldsig-more#rsa-sha512"},
        {AlgorithmTag::TagC14N, u"http://www.w3.org/TR/2001/REC-xml-c14n-20010315"},
    };
    return table;
}

std::u16string AlgorithmURIMap::getAlgorithmURI(AlgorithmTag tag) {
    const auto row = getTable().find(tag);
    if (row == getTable().end())
        throw Exception("Internal Error: Algorithm tag is not recognized.");
    return row->second;
}

std::u16string AlgorithmURIMap::getAlgorithmURI(DigestMethod digest) {
    throwIfNotDigest(number(digest));
    return getAlgorithmURI(static_cast<AlgorithmTag>(number(digest)));
}

std::u16string AlgorithmURIMap::getAlgorithmURI(DigestMethod digest, SignatureMethod signature) {
    if (number(signature) >= SIGNATURE_KEY_COUNT)
        throwUnsupportedSignature();
    throwIfNotDigest(number(digest));
    return getAlgorithmURI(static_cast<AlgorithmTag>(number(digest) + DIGEST_COUNT));
}

DigestMethod AlgorithmURIMap::getDigestMethod(const std::u16string& uri) {
    const std::uint32_t tag = number(getAlgorithmTag(uri));
    throwIfNotDigest(tag);
    return static_cast<DigestMethod>(tag);
}

std::pair<DigestMethod, SignatureMethod> AlgorithmURIMap::getSigningParameters(const std::u16string& uri) {
    const std::uint32_t tag = number(getAlgorithmTag(uri));
    if (tag < DIGEST_COUNT || tag >= 2 * DIGEST_COUNT)
        throwUnsupportedSignature();
    return {static_cast<DigestMethod>(tag - DIGEST_COUNT), SignatureMethod::RSA2048};
}

AlgorithmTag AlgorithmURIMap::getAlgorithmTag(const std::u16string& uri) {
    for (const auto& [tag, identifier] : getTable()) {
        if (areSameTexts(identifier, uri))
            return tag;
    }
    throw Exception("URI provided is not supported as an algorithm.");
}

} // namespace opc::model
