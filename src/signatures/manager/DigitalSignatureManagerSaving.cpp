#include "package/PackageImpl.hpp"
#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/document/SignatureCost.hpp"
#include "signatures/manager/DigitalSignatureManagerImpl.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"
#include "xml/DocumentBudget.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/StandardPartInfo.hpp>

/// @file
/// How a new signature is written: its part, and the origin part with the relationship to it.

namespace opc::model {

void DigitalSignatureManager::Impl::add(const std::shared_ptr<DigitalSignatureData>& data) {
    const Bytes document = compose(*data);
    list.signatures.push_back(DigitalSignatureData::makeHandle(data));
    try {
        savePart(*data, document);
    } catch (const InvalidRelationshipContent&) { // the package refuses it: nothing was created
        list.signatures.pop_back();
        throw;
    } catch (const InvalidContentTypeStream&) { // the same
        list.signatures.pop_back();
        throw;
    }
}

DigitalSignatureManager::Bytes DigitalSignatureManager::Impl::compose(DigitalSignatureData& data) {
    Bytes document;
    ByteArrayOutAdaptor output(document);
    serializer.writeSignature(data, output);
    DigitalSignatureData again;
    again.m_share = std::make_shared<DocumentShare>(package.state().documentBudget, &XmlLimits::signature);
    ByteArrayInAdaptor input(document);
    MeteredStream metered(input, *again.m_share, cost::BYTES_PER_ELEMENT);
    try {
        serializer.readSignature(metered, again);
    } catch (const InvalidPartContent& e) {
        throw translated<CouldNotGenerateSignature>(
            e, std::string("The signature couldn't be loaded again: ") + e.what());
    }
    data.m_share = std::move(again.m_share);
    return document;
}

void DigitalSignatureManager::Impl::savePart(const DigitalSignatureData& data, const Bytes& document) {
    const PartName name = getSignaturePartName(data.getName());
    if (package.hasPart(name))
        throw CouldNotGenerateSignature(
            "Internal Error: New signature should not have the same name as an existing one.");
    Part origin = getOrCreateOrigin();
    try {
        const Part part = package.createPart(name, getSignaturePartContentType(), StandardPartInfo());
        origin.createInternalRelationship(getSignatureRelationshipType(), name.getURI(),
                                          getSignatureRelationshipID(data.m_signatureId));
        part.getOutputStream().write(document.data(), document.size());
    } catch (const InvalidPartName& e) {
        throw CouldNotGenerateSignature(std::string("Unable to create signature part. ") + e.what());
    }
}

Part DigitalSignatureManager::Impl::getOrCreateOrigin() {
    try {
        std::optional<Part> origin = findOriginForNew();
        if (origin)
            origin->throwIfRelationshipsFixed();
        if (findOriginURI(package))
            return *origin;
        package.throwIfRelationshipsFixed();
        if (!origin)
            origin = package.createPart(PartName(getOriginPartURI()), getOriginPartContentType(),
                                        StandardPartInfo());
        package.createInternalRelationship(getOriginRelationshipType(), origin->getName().getURI());
        return *origin;
    } catch (const InvalidPartName& e) {
        throw CouldNotGenerateSignature(std::string("Could not create/fetch signature origin part. ") +
                                        e.what());
    }
}

/// A package has at most one origin part [M6.1], so signatures in another form may share it.
std::optional<Part> DigitalSignatureManager::Impl::findOriginForNew() const {
    if (const auto uri = findOriginURI(package))
        return package.getPart(PartName(*uri));
    const PartName name(getOriginPartURI());
    if (!package.hasPart(name))
        return std::nullopt;
    const Part part = package.getPart(name);
    return part.getContentType() == getOriginPartContentType() ? std::optional(part) : std::nullopt;
}

} // namespace opc::model
