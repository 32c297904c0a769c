#include "signatures/signature/DigitalSignatureData.hpp"
#include "signatures/verification/SignerCheck.hpp"
#include "signatures/verification/VerdictTexts.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/AlgorithmURIMap.hpp>

#include <map>

namespace opc::model {

namespace {

constexpr std::size_t MINIMAL_KEY_SIZE = 2048; // in bits

const char* nameOf(DigestMethod weakDigest) {
    return weakDigest == DigestMethod::MD5 ? "MD5" : "SHA-1";
}

/// The part, the relationships part or the object that a reference leads to.
std::string placeOf(const Reference& reference) {
    return isSameDocumentReference(reference.referenceURI)
               ? "#" + toUDEString(reference.referenceURI.getFragment())
               : toUDEString(reference.referenceURI.getPath());
}

} // namespace

std::vector<std::string> findWeaknesses(const DigitalSignatureData& data) {
    std::vector<std::string> weaknesses;
    // The value is as long as the key's modulus, whatever key the signature names.
    const std::size_t keySize = data.m_signatureValue.size() * 8;
    if (keySize < MINIMAL_KEY_SIZE)
        weaknesses.push_back("RSA key of " + std::to_string(keySize) + " bits");
    std::map<DigestMethod, verdict::Places> places;
    if (isWeak(data.m_signatureParams.getDigestMethod()))
        places[data.m_signatureParams.getDigestMethod()].add("the signature value");
    for (const auto* references : {&data.m_content.signedInfoReferences, &data.m_content.manifestReferences})
        for (const Reference& reference : *references) {
            const DigestMethod method = AlgorithmURIMap::getDigestMethod(reference.digestMethod);
            if (isWeak(method))
                places[method].add(placeOf(reference));
        }
    for (const auto& [method, found] : places)
        weaknesses.push_back(std::string(nameOf(method)) + " digest of " + found.toText());
    return weaknesses;
}

} // namespace opc::model
