#include "signatures/document/SignatureComposer.hpp"

#include "signatures/document/SignatureRecords.hpp"
#include "signatures/document/SignatureVocabulary.hpp"
#include "xml/PlainMarkup.hpp"

#include <opc/core/Text.hpp>

#include <string_view>

namespace opc::model {

namespace {

using namespace vocabulary::signatures;

constexpr auto PREFIX = package_element::PREFIX + ":";
constexpr auto SIGNATURE_TIME = PREFIX + package_element::SIGNATURE_TIME;
constexpr auto FORMAT = PREFIX + package_element::FORMAT;
constexpr auto VALUE = PREFIX + package_element::VALUE;
constexpr auto RELATIONSHIP_REFERENCE = PREFIX + package_element::RELATIONSHIP_REFERENCE;
constexpr auto RELATIONSHIP_GROUP_REFERENCE = PREFIX + package_element::RELATIONSHIP_GROUP_REFERENCE;
constexpr auto PREFIX_DECLARATION = attribute::XMLNS + ":" + package_element::PREFIX;

/// Composes the elements of a signature, each from its record.
class SignatureComposer {
public:
    explicit SignatureComposer(std::string& text) : xml(text) { text.clear(); }

    void addSignature(const SignatureRecord& data) {
        xml << R"(<?xml version="1.0" encoding="UTF-8" standalone="yes" ?>)";
        begin(element::SIGNATURE);
        xml.addAttribute(attribute::ID, SIGNATURE_ID_PREFIX.text() + data.m_signatureId);
        xml.addAttribute(attribute::XMLNS, vocabulary::signatures::NAMESPACE);
        xml << ">";
        addSignedInfo(data);
        addTextElement(element::SIGNATURE_VALUE, data.m_signatureValueInXML);
        if (data.m_keyValue || data.m_certificate)
            addKeyInfo(data);
        addPackageObject(data.m_content);
        end(element::SIGNATURE);
    }

    void addSignedInfo(const SignatureRecord& data) {
        begin(element::SIGNED_INFO);
        xml.addAttribute(attribute::XMLNS, vocabulary::signatures::NAMESPACE);
        xml << ">";
        addAlgorithm(element::CANONICALIZATION_METHOD, data.m_canonicalizationMethod);
        addAlgorithm(element::SIGNATURE_METHOD, data.m_signatureMethod);
        addReferences(data.m_content.signedInfoReferences);
        end(element::SIGNED_INFO);
    }

    void addPackageObject(const SignatureContent& content) {
        begin(element::OBJECT);
        xml.addAttribute(attribute::ID, PACKAGE_OBJECT_ID);
        xml.addAttribute(PREFIX_DECLARATION, PACKAGE_NAMESPACE);
        xml << ">";
        beginContent(element::MANIFEST);
        addReferences(content.manifestReferences);
        end(element::MANIFEST);
        beginContent(element::SIGNATURE_PROPERTIES);
        for (const SignatureProperty& property : content.signatureProperties)
            addProperty(property);
        end(element::SIGNATURE_PROPERTIES);
        end(element::OBJECT);
        hasEmptyList =
            hasEmptyList || content.manifestReferences.empty() || content.signatureProperties.empty();
    }

    bool isPlain() const { return xml.isPlain() && !hasEmptyList; }

private:
    /// The start of a tag that has attributes.
    void begin(std::string_view name) { xml << "<" << name; }

    /// The start tag of an element without attributes.
    void beginContent(std::string_view name) { xml << "<" << name << ">"; }
    void end(std::string_view name) { xml << "</" << name << ">"; }

    void addTextElement(std::string_view name, std::u16string_view text) {
        beginContent(name);
        xml.addText(text);
        end(name);
    }

    void addEmptyElement(std::string_view name, std::string_view attribute, std::u16string_view value) {
        begin(name);
        xml.addAttribute(attribute, value);
        xml << "/>";
    }

    void addAlgorithm(std::string_view name, std::u16string_view identifier) {
        addEmptyElement(name, attribute::ALGORITHM, identifier);
    }

    void addAttributeIfNotEmpty(std::string_view name, std::u16string_view value) {
        if (!value.empty())
            xml.addAttribute(name, value);
    }

    void addReferences(const std::vector<Reference>& references) {
        for (const Reference& reference : references) {
            begin(element::REFERENCE);
            addAttributeIfNotEmpty(attribute::ID, reference.referenceID);
            addAttributeIfNotEmpty(attribute::TYPE, reference.referenceType);
            addAttributeIfNotEmpty(attribute::URI, reference.referenceURI.toString());
            xml << ">";
            addTransforms(reference);
            addAlgorithm(element::DIGEST_METHOD, reference.digestMethod);
            addTextElement(element::DIGEST_VALUE, reference.digestValue);
            end(element::REFERENCE);
        }
    }

    void addTransforms(const Reference& reference) {
        const bool ofRelationships = reference.selectsRelationships();
        if (reference.transforms.empty() && !ofRelationships)
            return;
        beginContent(element::TRANSFORMS);
        for (const std::u16string& algorithm : reference.transforms)
            addAlgorithm(element::TRANSFORM, algorithm);
        if (ofRelationships)
            addRelationshipTransform(reference);
        end(element::TRANSFORMS);
    }

    void addRelationshipTransform(const Reference& reference) {
        begin(element::TRANSFORM);
        xml.addAttribute(attribute::ALGORITHM, RELATIONSHIP_TRANSFORM);
        xml << ">";
        for (const std::u16string& id : reference.relationshipReferences)
            addEmptyElement(RELATIONSHIP_REFERENCE, attribute::SOURCE_ID, id);
        for (const std::u16string& type : reference.relationshipGroupReferences)
            addEmptyElement(RELATIONSHIP_GROUP_REFERENCE, attribute::SOURCE_TYPE, type);
        end(element::TRANSFORM);
    }

    void addProperty(const SignatureProperty& property) {
        begin(element::SIGNATURE_PROPERTY);
        addAttributeIfNotEmpty(attribute::ID, property.id);
        xml.addAttribute(attribute::TARGET, property.target);
        xml << ">";
        beginContent(SIGNATURE_TIME);
        addTextElement(FORMAT, property.format);
        addTextElement(VALUE, property.value);
        end(SIGNATURE_TIME);
        end(element::SIGNATURE_PROPERTY);
    }

    void addKeyInfo(const SignatureRecord& data) {
        beginContent(element::KEY_INFO);
        if (data.m_keyValue) {
            beginContent(element::KEY_VALUE);
            beginContent(element::RSA_KEY_VALUE);
            addTextElement(element::MODULUS, data.m_keyValue->modulus);
            addTextElement(element::EXPONENT, data.m_keyValue->exponent);
            end(element::RSA_KEY_VALUE);
            end(element::KEY_VALUE);
        }
        if (data.m_certificate) {
            beginContent(element::X509_DATA);
            addCertificate(*data.m_certificate);
            if (data.m_certificateChain)
                for (const auto& certificate : data.m_certificateChain->getCertificates())
                    addCertificate(certificate);
            end(element::X509_DATA);
        }
        end(element::KEY_INFO);
    }

    void addCertificate(const bedrock::certificates::X509Certificate& certificate) {
        addTextElement(element::X509_CERTIFICATE, toString(certificate.getAsString(), false));
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
