#include <opc/model/DigitalSignatureManager.hpp>

#include "signatures/CryptoErrors.hpp"
#include "signatures/DataToSign.hpp"
#include "signatures/DigestEngines.hpp"
#include "package/StreamRewinder.hpp"

#include <bedrock/crypto/CryptoEngine.hpp>
#include <bedrock/crypto/DigestEngine.hpp>
#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <opc/core/StreamHelper.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>

#include <sstream>
#include <string_view>

/// @file
/// What a signature covers of the package: the digests of parts, and the relationships that selectors choose.

namespace opc::model {

namespace {

/// The content of the core properties part without its first keywords element, which lies outside every
/// signature. The search is for bytes: an opening tag of another form leaves the whole content.
std::vector<unsigned char> readWithoutKeywords(InputStream& stream) {
    constexpr std::string_view OPENING = "<cp:keywords>";
    constexpr std::string_view CLOSING = "</cp:keywords>";
    std::stringstream content;
    StreamHelper::copyStreamToStream(stream, content);
    std::string bytes = content.str();
    const std::size_t begin = bytes.find(OPENING);
    const std::size_t end = bytes.find(CLOSING);
    if (begin != std::string::npos && end != std::string::npos && begin < end)
        bytes.erase(begin, end + CLOSING.size() - begin);
    return {bytes.begin(), bytes.end()};
}

std::vector<unsigned char> digestPart(const Part& part, bedrock::crypto::DigestEngine* engine) {
    InputStream& stream = part.getInputStream();
    const StreamRewinder rewinder(stream);
    if (part.getName().getURI() != PackageHelper::getCorePropertiesURI())
        return digestStream(engine, stream);
    return digestBytes(engine, readWithoutKeywords(stream));
}

} // namespace

std::vector<DigitalSignatureManager::Bytes>
DigitalSignatureManager::computePartDigests(const std::vector<PartName>& partNames,
                                            DigestMethod digestMethod) const {
    try {
        const bedrock::crypto::CryptoEngine cryptoEngine(
            std::make_shared<bedrock::crypto::cryptopp::CryptoProvider>());
        const auto engine = createDigestEngine(cryptoEngine, digestMethod);
        std::vector<Bytes> digests;
        digests.reserve(partNames.size());
        for (const PartName& name : partNames)
            digests.push_back(digestPart(getPackage().getPart(name), engine.get()));
        return digests;
    } catch (const bedrock::crypto::utils::Exception& e) {
        throw CouldNotGenerateSignature(std::string("Unable to compute digest. ") + e.what());
    }
}

DataToSign DigitalSignatureManager::computeDataToSign(const std::vector<PartName>& partNames,
                                                      const std::vector<RelationshipSelector>& selectors,
                                                      const SignatureParams& params) const {
    return translateSigningFailures([&] {
        DataToSign data;
        data.partNames = partNames;
        data.selectors = selectors;
        data.digests = computePartDigests(partNames, params.getDigestMethod());
        for (const PartName& name : partNames)
            data.contentTypes.push_back(getPackage().getPart(name).getContentType());
        for (const RelationshipSelector& selector : selectors)
            selectRelationships(selector, data.relationships);
        if (!selectors.empty() && data.relationships.empty())
            throw RelationshipNotFound(
                "No relationships in the package matched the provided relationship selectors.");
        return data;
    });
}

void DigitalSignatureManager::selectRelationships(const RelationshipSelector& selector,
                                                  std::vector<Relationship>& selected) const {
    const std::u16string criteria = selector.getSelectionCriteria();
    const auto select = [&](const RelationshipSource& source) {
        if (selector.getSelectorType() == RelationshipSelectorType::SourceId) {
            selected.push_back(source.getRelationshipByID(criteria));
            return;
        }
        const auto found = source.getRelationshipsByType(criteria);
        selected.insert(selected.end(), found.begin(), found.end());
    };
    const URI source = selector.getSourceURI();
    if (source == PackageHelper::getPackageRootURI())
        select(getPackage());
    else
        select(getPackage().getPart(PartName(source)));
}

} // namespace opc::model
