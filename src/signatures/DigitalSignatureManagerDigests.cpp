#include <opc/model/DigitalSignatureManager.hpp>

#include "package/StreamRewinder.hpp"
#include "signatures/CryptoErrors.hpp"
#include "signatures/DataToSign.hpp"
#include "signatures/DigestEngines.hpp"
#include "signatures/RelationshipsByType.hpp"

#include <bedrock/crypto/CryptoEngine.hpp>
#include <bedrock/crypto/DigestEngine.hpp>
#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <opc/core/StreamHelper.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>

#include <optional>
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
    std::string bytes;
    {
        std::ostringstream content;
        content.exceptions(std::ios_base::badbit); // without memory it would end early, in silence
        StreamHelper::copyStreamToStream(stream, content);
        bytes = content.str();
    }
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

/// Selects relationships of one source.
class SelectionSource {
public:
    /// @throws InvalidPartName, PartNotFound
    SelectionSource(const Package& containing, const URI& sourceURI) : package(containing), uri(sourceURI) {
        if (uri != PackageHelper::getPackageRootURI())
            part.emplace(package.getPart(PartName(uri)));
    }

    bool isAt(const URI& sourceURI) const { return uri == sourceURI; }

    /// @throws RelationshipNotFound
    void select(const RelationshipSelector& selector, std::vector<Relationship>& selected) {
        const std::u16string criteria = selector.getSelectionCriteria();
        const RelationshipSource& source = part ? static_cast<const RelationshipSource&>(*part) : package;
        if (selector.getSelectorType() == RelationshipSelectorType::SourceId) {
            appendSelected({source.getRelationshipByID(criteria)}, selected);
            return;
        }
        if (!byType)
            byType.emplace(source);
        appendSelected(byType->get(criteria), selected);
    }

private:
    const Package& package;
    URI uri;
    std::optional<Part> part;
    std::optional<RelationshipsByType> byType;
};

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
        if (!partNames.empty())
            data.digests = computePartDigests(partNames, params.getDigestMethod());
        for (const PartName& name : partNames)
            data.contentTypes.push_back(getPackage().getPart(name).getContentType());
        data.relationships = selectRelationships(selectors);
        if (!selectors.empty() && data.relationships.empty())
            throw RelationshipNotFound(
                "No relationships in the package matched the provided relationship selectors.");
        return data;
    });
}

std::vector<Relationship>
DigitalSignatureManager::selectRelationships(const std::vector<RelationshipSelector>& selectors) const {
    std::vector<Relationship> selected;
    std::optional<SelectionSource> source; // the selectors of one mostly stand together
    for (const RelationshipSelector& selector : selectors) {
        const URI uri = selector.getSourceURI();
        if (!source || !source->isAt(uri))
            source.emplace(getPackage(), uri);
        source->select(selector, selected);
    }
    return selected;
}

} // namespace opc::model
