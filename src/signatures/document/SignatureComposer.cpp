#include "signatures/document/SignatureComposer.hpp"

#include "signatures/document/SignatureRecords.hpp"
#include "signatures/document/SignatureVocabulary.hpp"
#include "xml/PlainMarkup.hpp"

#include <opc/core/Text.hpp>

#include <string_view>

namespace opc::model {

namespace {

/// Composes the elements of a signature, each from its record.
class SignatureComposer {
public:
    explicit SignatureComposer(std::string& text) : xml(text) { text.clear(); }

    void addSignature(const SignatureRecord& data) {
        xml << R"(<?xml version="1.0" encoding="UTF-8" standalone="yes" ?><Signature)";
        xml.addAttribute("Id", vocabulary::SIGNATURE_ID_PREFIX + data.m_signatureId);
        xml.addAttribute("xmlns", vocabulary::XML_SIGNATURE_NAMESPACE);
        xml << ">";
        addSignedInfo(data);
        addTextElement("SignatureValue", data.m_signatureValueInXML);
        if (data.m_keyValue || data.m_certificate)
            addKeyInfo(data);
        addPackageObject(data.m_content);
        xml << "</Signature>";
    }

    void addSignedInfo(const SignatureRecord& data) {
        xml << "<SignedInfo";
        xml.addAttribute("xmlns", vocabulary::XML_SIGNATURE_NAMESPACE);
        xml << ">";
        addAlgorithm("CanonicalizationMethod", data.m_canonicalizationMethod);
        addAlgorithm("SignatureMethod", data.m_signatureMethod);
        addReferences(data.m_content.signedInfoReferences);
        xml << "</SignedInfo>";
    }

    void addPackageObject(const SignatureContent& content) {
        xml << "<Object";
        xml.addAttribute("Id", vocabulary::PACKAGE_OBJECT_ID);
        xml.addAttribute("xmlns:pds", vocabulary::PACKAGE_SIGNATURE_NAMESPACE);
        xml << "><Manifest>";
        addReferences(content.manifestReferences);
        xml << "</Manifest><SignatureProperties>";
        for (const SignatureProperty& property : content.signatureProperties)
            addProperty(property);
        xml << "</SignatureProperties></Object>";
        hasEmptyList =
            hasEmptyList || content.manifestReferences.empty() || content.signatureProperties.empty();
    }

    bool isPlain() const { return xml.isPlain() && !hasEmptyList; }

private:
    void addTextElement(std::string_view name, std::u16string_view text) {
        xml << "<" << name << ">";
        xml.addText(text);
        xml << "</" << name << ">";
    }

    void addEmptyElement(std::string_view name, std::string_view attribute, std::u16string_view value) {
        xml << "<" << name;
        xml.addAttribute(attribute, value);
        xml << "/>";
    }

    void addAlgorithm(std::string_view name, std::u16string_view identifier) {
        addEmptyElement(name, "Algorithm", identifier);
    }

    void addAttributeIfNotEmpty(std::string_view name, std::u16string_view value) {
        if (!value.empty())
            xml.addAttribute(name, value);
    }

    void addReferences(const std::vector<Reference>& references) {
        for (const Reference& reference : references) {
            xml << "<Reference";
            addAttributeIfNotEmpty("Id", reference.referenceID);
            addAttributeIfNotEmpty("Type", reference.referenceType);
            addAttributeIfNotEmpty("URI", reference.referenceURI.toString());
            xml << ">";
            addTransforms(reference);
            addAlgorithm("DigestMethod", reference.digestMethod);
            addTextElement("DigestValue", reference.digestValue);
            xml << "</Reference>";
        }
    }

    void addTransforms(const Reference& reference) {
        const bool ofRelationships = reference.selectsRelationships();
        if (reference.transforms.empty() && !ofRelationships)
            return;
        xml << "<Transforms>";
        for (const std::u16string& algorithm : reference.transforms)
            addAlgorithm("Transform", algorithm);
        if (ofRelationships)
            addRelationshipTransform(reference);
        xml << "</Transforms>";
    }

    void addRelationshipTransform(const Reference& reference) {
        xml << "<Transform";
        xml.addAttribute("Algorithm", vocabulary::RELATIONSHIP_TRANSFORM);
        xml << ">";
        for (const std::u16string& id : reference.relationshipReferences)
            addEmptyElement("pds:RelationshipReference", "SourceId", id);
        for (const std::u16string& type : reference.relationshipGroupReferences)
            addEmptyElement("pds:RelationshipGroupReference", "SourceType", type);
        xml << "</Transform>";
    }

    void addProperty(const SignatureProperty& property) {
        xml << "<SignatureProperty";
        addAttributeIfNotEmpty("Id", property.id);
        xml.addAttribute("Target", property.target);
        xml << "><pds:SignatureTime>";
        addTextElement("pds:Format", property.format);
        addTextElement("pds:Value", property.value);
        xml << "</pds:SignatureTime></SignatureProperty>";
    }

    void addKeyInfo(const SignatureRecord& data) {
        xml << "<KeyInfo>";
        if (data.m_keyValue) {
            xml << "<KeyValue><RSAKeyValue>";
            addTextElement("Modulus", data.m_keyValue->modulus);
            addTextElement("Exponent", data.m_keyValue->exponent);
            xml << "</RSAKeyValue></KeyValue>";
        }
        if (data.m_certificate) {
            xml << "<X509Data>";
            addCertificate(*data.m_certificate);
            if (data.m_certificateChain)
                for (const auto& certificate : data.m_certificateChain->getCertificates())
                    addCertificate(certificate);
            xml << "</X509Data>";
        }
        xml << "</KeyInfo>";
    }

    void addCertificate(const bedrock::certificates::X509Certificate& certificate) {
        addTextElement("X509Certificate", toString(certificate.getAsString(), false));
    }

    PlainMarkup xml;
    bool hasEmptyList = false;
};

} // namespace

bool composePlainSignedInfo(const SignatureRecord& data, std::string& text) {
    SignatureComposer composer(text);
    composer.addSignedInfo(data);
    return composer.isPlain();
}

bool composePlainPackageObject(const SignatureContent& content, std::string& text) {
    SignatureComposer composer(text);
    composer.addPackageObject(content);
    return composer.isPlain();
}

bool composePlainSignature(const SignatureRecord& data, std::string& document) {
    SignatureComposer composer(document);
    composer.addSignature(data);
    return composer.isPlain();
}

} // namespace opc::model
