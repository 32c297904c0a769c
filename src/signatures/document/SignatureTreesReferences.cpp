#include "signatures/document/SignatureTrees.hpp"

#include "signatures/document/SignatureRecords.hpp"
#include "xml/ElementIndex.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XercesHelper.hpp>

namespace opc::model {

namespace {

using namespace vocabulary::signatures;

void throwIfTypeIsNotObject(const std::u16string& type) {
    if (type.empty())
        throw InvalidPartContent("XML signature: referenceType is empty.");
    if (type == OBJECT_TYPE)
        return;
    if (type == SIGNATURE_PROPERTIES_TYPE)
        throw NotImplemented("XMLDSig SignatureProperties element is not supported yet.");
    if (type == SIGNED_PROPERTIES_TYPE)
        throw NotImplemented("XAsES SignedProperties element is not supported yet.");
    throw InvalidPartContent("XML Signature: referenceType not supported yet.");
}

} // namespace

void SignatureTrees::readManifest(const IndexedElement& manifest, SignatureRecord& data) const {
    if (!manifest.isNamed(names.manifest))
        throw Exception("Internal Exception: Did not get Manifest Element as expected.");
    for (const IndexedElement& element : manifest.getElements(names.reference)) {
        Reference reference;
        readReference(element, reference);
        data.m_content.manifestReferences.push_back(std::move(reference));
    }
}

void SignatureTrees::readSignedInfoReferences(const IndexedElement& root, SignatureRecord& data) {
    const IndexedElement signedInfo = getRequiredElement(root, names.signedInfo, names.noNamespace);
    toText(signedInfo, data.m_content.signedInfoXML);
    for (const IndexedElement& element : signedInfo.getElements(names.reference)) {
        Reference reference;
        readReference(element, reference);
        throwIfTypeIsNotObject(reference.referenceType);
        const std::u16string fragment = reference.referenceURI.getFragment();
        if (data.m_objects.count(fragment) == 0)
            throw InvalidPartContent("XML signature: Could not find referenced object " +
                                     toUDEString(fragment));
        data.m_content.signedInfoReferences.push_back(std::move(reference));
    }
}

void SignatureTrees::readReference(const IndexedElement& element, Reference& reference) const {
    if (!element.isNamed(names.reference))
        throw Exception("Internal Exception: Did not get Reference Element as expected.");
    const std::u16string uri =
        getRequiredAttribute(element, names.uri, "XML signature: Manifest reference missing URI attribute.");
    if (uri.empty())
        throw InvalidPartContent("XML Signature: Reference does not have a URI. It is not supported.");
    try {
        reference.referenceURI = URI(uri);
    } catch (const InvalidURI&) {
        throw InvalidPartContent("XML signature: Reference URI is not valid");
    }
    XercesHelper::getElementAttribute(element, names.type, reference.referenceType);
    XercesHelper::getElementAttribute(element, names.id, reference.referenceID);
    reference.digestMethod =
        getRequiredAttribute(getRequiredElement(element, names.digestMethod, names.noNamespace),
                             names.algorithm, "XML signature: DigestMethod is empty.");
    getRequiredElementText(element, names.digestValue, reference.digestValue, names.noNamespace);

    const auto transforms = element.getElement(names.transforms);
    if (!transforms)
        return;
    for (const IndexedElement& transform : transforms->getElements(names.transform))
        readTransform(transform, reference);
}

void SignatureTrees::readTransform(const IndexedElement& element, Reference& reference) const {
    std::u16string algorithm =
        getRequiredAttribute(element, names.algorithm, "XML signature: TransformMethod is empty.");
    if (!isRelationshipTransform(algorithm)) {
        reference.transforms.push_back(std::move(algorithm));
        return;
    }
    for (const IndexedElement& selected :
         element.getElementsNS(packageNamespace, packageNames.relationshipReference))
        reference.relationshipReferences.push_back(
            getRequiredAttribute(selected, packageNames.sourceId,
                                 "XML signature: SourceID of a relationship transform is empty."));
    for (const IndexedElement& selected :
         element.getElementsNS(packageNamespace, packageNames.relationshipGroupReference))
        reference.relationshipGroupReferences.push_back(
            getRequiredAttribute(selected, packageNames.sourceType,
                                 "XML signature: Source type of a relationship group transform is empty."));
}

} // namespace opc::model
