#include "signatures/verification/ReferenceCheck.hpp"

#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/digests/PartDigester.hpp"
#include "signatures/digests/SignedText.hpp"
#include "signatures/document/SignatureVocabulary.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"

#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/AlgorithmURIMap.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <map>
#include <string_view>

namespace opc::model {

namespace {

using namespace vocabulary::signatures;
using bedrock::codesigning_verifier::ErrorMap;
using bedrock::crypto::utils::base64Encode;

/// The digested text of an object: everything except the namespace declaration that its tag gets from its parent in
/// reading. The serialiser puts that first, followed by a blank, because an object has an `Id`.
SignedText digestedText(std::u16string_view text) {
    static constexpr auto DECLARATION = attribute::XMLNS + "=\"" + vocabulary::signatures::NAMESPACE + "\" ";
    constexpr std::u16string_view declaration = DECLARATION;
    const std::size_t found = text.substr(0, text.find(u'>')).find(declaration);
    if (found == std::u16string_view::npos)
        return SignedText(text);
    return SignedText(text.substr(0, found), text.substr(found + declaration.size()));
}

std::u16string digestObject(const DigitalSignatureData& data, const URI& uri) {
    const std::u16string id = uri.getFragment();
    const auto object = data.m_objects.find(id);
    if (object == data.m_objects.end())
        throw InvalidSignature("XML signature: Could not find referenced object " + toUDEString(id),
                               ErrorMap<104>());
    SignedText text = digestedText(object->second.XMLBytes);
    return base64Encode(data.computeDigest(text));
}

/// A countersignature is known by its identifier, which isn't signed: anybody could give it to another signature. The
/// signed property of the time names the identifier, too.
void throwIfNotMadeAsCountersignature(const DigitalSignatureData& data) {
    const std::u16string target = u"#" + SIGNATURE_ID_PREFIX.text() + COUNTERSIGNATURE_ID;
    const auto& properties = data.m_content.signatureProperties;
    if (std::none_of(properties.begin(), properties.end(), [&target](const SignatureProperty& property) {
            return property.id == SIGNATURE_TIME_ID && property.target == target;
        }))
        throw InvalidSignature("The signature wasn't made as a countersignature.", ErrorMap<104>());
}

} // namespace

std::vector<const Reference*> findDifferences(const DigitalSignatureData& data,
                                              const SignedRelationships& relationships,
                                              PartDigesters& digesters) {
    if (data.m_signatureId == COUNTERSIGNATURE_ID)
        throwIfNotMadeAsCountersignature(data);
    try {
        // Computes each digest once, however many references there are to it.
        std::map<std::u16string, std::u16string> objectDigests; // by identifier
        const auto agrees = [&](const Reference& reference) {
            if (isSameDocumentReference(reference.referenceURI)) {
                std::u16string& digest = objectDigests[reference.referenceURI.getFragment()];
                if (digest.empty())
                    digest = digestObject(data, reference.referenceURI);
                return digest == reference.digestValue;
            }
            if (reference.selectsRelationships())
                return areSameTexts(data.computeRelationshipsDigest(relationships), reference.digestValue);
            const DigestMethod method = AlgorithmURIMap::getDigestMethod(reference.digestMethod);
            const PartName name(reference.referenceURI.getPath());
            return areSameTexts(base64Encode(digesters.digest(name, method)), reference.digestValue);
        };
        std::vector<const Reference*> differences;
        for (const auto* references :
             {&data.m_content.signedInfoReferences, &data.m_content.manifestReferences})
            for (const Reference& reference : *references)
                if (!agrees(reference))
                    differences.push_back(&reference);
        return differences;
    } catch (const Exception& e) {
        throw translated<InvalidSignature>(e, e.what(), ErrorMap<104>());
    }
}

} // namespace opc::model
