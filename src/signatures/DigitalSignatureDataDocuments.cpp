#include "signatures/DigitalSignatureData.hpp"

#include "signatures/DocumentErrors.hpp"
#include "signatures/SignatureVocabulary.hpp"
#include "signatures/TextElement.hpp"

#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOM.hpp>

namespace opc::model {

namespace {

using xercesc::DOMElement;

/// Elements and attributes are built without namespaces: the prefix belongs to the name, and declarations are
/// attributes like any other. What is digested rests on that form.
constexpr char16_t PREFIX[] = u"pds:";

DOMElement* appendElementWithAttribute(DOMElement* parent, const XercesString& name,
                                       const XercesString& attribute, const std::u16string& value) {
    DOMElement* const element = XercesHelper::appendElement(parent, name);
    XercesHelper::setElementAttribute(element, attribute, value);
    return element;
}

void setAttributeIfNotEmpty(DOMElement* element, const XercesString& name, const std::u16string& value) {
    if (!value.empty())
        XercesHelper::setElementAttribute(element, name, value);
}

/// Appends `Reference` elements under one set of names.
class ReferenceWriter {
public:
    void append(DOMElement* parent, const Reference& reference) const {
        DOMElement* const element = XercesHelper::appendElement(parent, names.reference);
        setAttributeIfNotEmpty(element, names.id, reference.referenceID);
        setAttributeIfNotEmpty(element, names.type, reference.referenceType);
        setAttributeIfNotEmpty(element, names.uri, reference.referenceURI.toString());
        appendTransforms(element, reference);
        appendElementWithAttribute(element, names.digestMethod, names.algorithm, reference.digestMethod);
        appendTextElement(element, names.digestValue, reference.digestValue);
    }

private:
    void appendTransforms(DOMElement* parent, const Reference& reference) const {
        const bool ofRelationships = reference.selectsRelationships();
        if (reference.transforms.empty() && !ofRelationships)
            return;
        DOMElement* const element = XercesHelper::appendElement(parent, names.transforms);
        for (const std::u16string& algorithm : reference.transforms)
            appendElementWithAttribute(element, names.transform, names.algorithm, algorithm);
        if (ofRelationships)
            appendRelationshipTransform(element, reference);
    }

    void appendRelationshipTransform(DOMElement* parent, const Reference& reference) const {
        DOMElement* const element = appendElementWithAttribute(parent, names.transform, names.algorithm,
                                                               vocabulary::RELATIONSHIP_TRANSFORM);
        for (const std::u16string& id : reference.relationshipReferences)
            appendElementWithAttribute(element, packageNames.relationshipReference, packageNames.sourceId,
                                       id);
        for (const std::u16string& type : reference.relationshipGroupReferences)
            appendElementWithAttribute(element, packageNames.relationshipGroupReference,
                                       packageNames.sourceType, type);
    }

    SignatureNames names;
    PackageSignatureNames packageNames{PREFIX};
};

void appendProperty(DOMElement* parent, const SignatureProperty& property, const SignatureNames& names,
                    const PackageSignatureNames& packageNames) {
    DOMElement* const element =
        appendElementWithAttribute(parent, names.signatureProperty, names.target, property.target);
    setAttributeIfNotEmpty(element, names.id, property.id);
    DOMElement* const time = XercesHelper::appendElement(element, packageNames.signatureTime);
    appendTextElement(time, packageNames.format, property.format);
    appendTextElement(time, packageNames.value, property.value);
}

} // namespace

DigitalSignatureData::OwnedDocument DigitalSignatureData::buildSignedInfo() const {
    return translateDocumentFailures([this] {
        const SignatureNames names;
        auto document = XercesHelper::createDocument();
        DOMElement* const signedInfo = XercesHelper::appendElement(document.get(), names.signedInfo);
        appendElementWithAttribute(signedInfo, names.canonicalizationMethod, names.algorithm,
                                   m_canonicalizationMethod);
        appendElementWithAttribute(signedInfo, names.signatureMethod, names.algorithm, m_signatureMethod);
        XercesHelper::setElementAttribute(signedInfo, names.xmlns, vocabulary::XML_SIGNATURE_NAMESPACE);
        appendReferences(signedInfo, m_content.signedInfoReferences);
        return document;
    });
}

DigitalSignatureData::OwnedDocument DigitalSignatureData::buildPackageObject() const {
    return translateDocumentFailures([this] {
        const SignatureNames names;
        const PackageSignatureNames packageNames(PREFIX);
        auto document = XercesHelper::createDocument();
        DOMElement* const object = XercesHelper::appendElement(document.get(), names.object);
        XercesHelper::setElementAttribute(object, names.id, vocabulary::PACKAGE_OBJECT_ID);
        XercesHelper::setElementAttribute(object, XercesString(u"xmlns:pds"),
                                          vocabulary::PACKAGE_SIGNATURE_NAMESPACE);
        appendReferences(XercesHelper::appendElement(object, names.manifest), m_content.manifestReferences);
        DOMElement* const properties = XercesHelper::appendElement(object, names.signatureProperties);
        for (const SignatureProperty& property : m_content.signatureProperties)
            appendProperty(properties, property, names, packageNames);
        return document;
    });
}

void DigitalSignatureData::appendReferences(DOMElement* element, const std::vector<Reference>& references) {
    const ReferenceWriter writer;
    for (const Reference& reference : references)
        writer.append(element, reference);
}

} // namespace opc::model
