#include "document/KeyInfo.hpp"

#include "document/ChildElements.hpp"
#include "document/Vocabulary.hpp"
#include "reason/Refusal.hpp"

#include <bedrock/crypto/SignatureValue.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>

namespace opc::standard_signatures {

namespace {

using Code = Reason::Code;

constexpr std::size_t MOST_KEY_CERTIFICATES = 20;

struct NamedCurve {
    std::string_view uri;
    const char* name;
};
constexpr NamedCurve CURVES[] = {{"urn:oid:1.2.840.10045.3.1.7", "P-256"},
                                 {"urn:oid:1.3.132.0.34", "P-384"},
                                 {"urn:oid:1.3.132.0.35", "P-521"}};

std::vector<unsigned char> readRSAKey(const XmlTreeNode& value) {
    ChildElements children(value);
    const std::vector<unsigned char> modulus = bytesOf(children.require("Modulus"));
    return bedrock::crypto::makeRSAPublicKey(modulus, bytesOf(children.require("Exponent")));
}

std::vector<unsigned char> readECKey(const XmlTreeNode& value) {
    const XmlTreeNode* const curve = firstChildElement(value);
    const XmlTreeNode* const point = curve == nullptr ? nullptr : nextElement(*curve);
    if (point != nullptr && curve->is(vocabulary::SIGNATURE_11, "NamedCurve") &&
        point->is(vocabulary::SIGNATURE_11, "PublicKey"))
        for (const NamedCurve& known : CURVES)
            if (attributeOf(*curve, "URI") == known.uri)
                return bedrock::crypto::makeECPublicKey(known.name, bytesOf(*point));
    return {};
}

/// @param keyValue  any child of KeyInfo
/// @return empty if it is no key, or one of a kind that isn't accepted
std::vector<unsigned char> readKeyValue(const XmlTreeNode& keyValue) {
    const XmlTreeNode* const value =
        keyValue.is(vocabulary::SIGNATURE, "KeyValue") ? firstChildElement(keyValue) : nullptr;
    try {
        if (value != nullptr && value->is(vocabulary::SIGNATURE, "RSAKeyValue"))
            return readRSAKey(*value);
        if (value != nullptr && value->is(vocabulary::SIGNATURE_11, "ECKeyValue"))
            return readECKey(*value);
    } catch (const bedrock::crypto::utils::InvalidKey& e) {
        throw Refusal(Code::NoKey, "",
                      std::string("The signature has a key that can't be used: ") + e.what());
    }
    return {};
}

void readCertificates(const XmlTreeNode& data, StatedKeys& keys) {
    for (const XmlTreeNode* one = firstChildElement(data); one != nullptr; one = nextElement(*one)) {
        if (!one->is(vocabulary::SIGNATURE, "X509Certificate"))
            continue;
        if (keys.certificates.size() >= MOST_KEY_CERTIFICATES)
            throw Refusal(Code::BeyondLimit, "", "The signature has too many certificates");
        keys.certificates.push_back(bytesOf(*one));
    }
}

} // namespace

StatedKeys readKeyInfo(const XmlTreeNode& keyInfo) {
    StatedKeys keys;
    for (const XmlTreeNode* one = firstChildElement(keyInfo); one != nullptr; one = nextElement(*one)) {
        if (one->is(vocabulary::SIGNATURE, "X509Data"))
            readCertificates(*one, keys);
        else if (std::vector<unsigned char> key = readKeyValue(*one); !key.empty())
            keys.keys.push_back(std::move(key));
        if (keys.keys.size() > MOST_KEY_CERTIFICATES)
            throw Refusal(Code::BeyondLimit, "", "The signature has too many keys");
    }
    return keys;
}

} // namespace opc::standard_signatures
