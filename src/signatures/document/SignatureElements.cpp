#include "signatures/document/SignatureElements.hpp"

#include "signatures/document/SignatureNames.hpp"
#include "signatures/document/SignatureRecords.hpp"
#include "signatures/document/TextElement.hpp"
#include "xml/DocumentFailures.hpp"

#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOM.hpp>

namespace opc::model {

namespace {

using namespace vocabulary::signatures;
using xercesc::DOMElement;

/// Elements and attributes are built without namespaces: the prefix is part of the name, and declarations are
/// ordinary attributes. Digests depend on that form.
struct WrittenNames : PackageSignatureNames {
    WrittenNames() : PackageSignatureNames((package_element::PREFIX + ":").text()) {}
};

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

/// Appends `Reference` elements with one set of names.
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
                                                               RELATIONSHIP_TRANSFORM.text());
        for (const std::u16string& id : reference.relationshipReferences)
            appendElementWithAttribute(element, packageNames.relationshipReference, packageNames.sourceId,
                                       id);
        for (const std::u16string& type : reference.relationshipGroupReferences)
            appendElementWithAttribute(element, packageNames.relationshipGroupReference,
                                       packageNames.sourceType, type);
    }

    SignatureNames names;
    WrittenNames packageNames;
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

void appendReferences(DOMElement* parent, const std::vector<Reference>& references) {
    const ReferenceWriter writer;
    for (const Reference& reference : references)
        writer.append(parent, reference);
}

} // namespace

OwnedDocument buildSignedInfo(const SignatureRecord& record) {
    return translateDocumentFailures([&record] {
        const SignatureNames names;
        auto document = XercesHelper::createDocument();
        DOMElement* const signedInfo = XercesHelper::appendElement(document.get(), names.signedInfo);
        appendElementWithAttribute(signedInfo, names.canonicalizationMethod, names.algorithm,
                                   record.m_canonicalizationMethod);
        appendElementWithAttribute(signedInfo, names.signatureMethod, names.algorithm,
                                   record.m_signatureMethod);
        XercesHelper::setElementAttribute(signedInfo, names.xmlns, vocabulary::signatures::NAMESPACE.text());
        appendReferences(signedInfo, record.m_content.signedInfoReferences);
        return document;
    });
}

OwnedDocument buildPackageObject(const SignatureContent& content) {
    return translateDocumentFailures([&content] {
        const SignatureNames names;
        const WrittenNames packageNames;
        auto document = XercesHelper::createDocument();
        DOMElement* const object = XercesHelper::appendElement(document.get(), names.object);
        XercesHelper::setElementAttribute(object, names.id, PACKAGE_OBJECT_ID.text());
        XercesHelper::setElementAttribute(
            object, XercesString((attribute::XMLNS + ":" + package_element::PREFIX).text()),
            PACKAGE_NAMESPACE.text());
        appendReferences(XercesHelper::appendElement(object, names.manifest), content.manifestReferences);
        DOMElement* const properties = XercesHelper::appendElement(object, names.signatureProperties);
        for (const SignatureProperty& property : content.signatureProperties)
            appendProperty(properties, property, names, packageNames);
        return document;
    });
}

} // namespace opc::model
