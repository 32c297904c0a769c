#include "signatures/document/DigitalSignatureSerializer.hpp"

#include "signatures/document/SignatureComposer.hpp"
#include "signatures/document/SignatureElements.hpp"
#include "signatures/document/SignatureRecords.hpp"
#include "signatures/document/TextElement.hpp"
#include "xml/ComposeOrSerialize.hpp"
#include "xml/ErrorHandlerAttachment.hpp"
#include "xml/XercesFailures.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/PlatformUtils.hpp>

namespace opc::model {

namespace {

using namespace vocabulary::signatures;
using xercesc::DOMDocument;
using xercesc::DOMElement;

/// Appends a copy of the root of `source`.
void appendCopy(DOMElement* parent, const DOMDocument& source) {
    translateXercesFailures([&] {
        parent->appendChild(parent->getOwnerDocument()->importNode(source.getDocumentElement(), true));
    });
}

void throwIfNoKeySize(SignatureMethod method) {
    switch (method) {
    case SignatureMethod::RSA1024:
    case SignatureMethod::RSA2048:
    case SignatureMethod::RSA4096:
        return;
    case SignatureMethod::NoKey:
        break;
    }
    throw Exception("Could not serialize key info element for this signature method.");
}

struct XercesTextDeleter {
    void operator()(char16_t* text) const { xercesc::XMLPlatformUtils::fgMemoryManager->deallocate(text); }
};

} // namespace

template <typename Operation>
auto DigitalSignatureSerializer::withWriter(Operation&& operation) {
    auto& writer = wakeXerces().writer;
    if (!writer)
        writer = XercesHelper::createWriter();
    try {
        return operation(*writer);
    } catch (...) {
        // A writer that failed would omit the namespace declarations from now on.
        writer.reset();
        throw;
    }
}

void DigitalSignatureSerializer::writeSignature(const SignatureRecord& data, OutputStream& stream) {
    std::string document;
    const auto compose = [&data](std::string& composed) {
        if (!composePlainSignature(data, composed))
            return false;
        if (data.m_keyValue)
            throwIfNoKeySize(data.m_signatureParams.getSignatureMethod());
        return true;
    };
    composeOrSerialize(document, compose, [&](OutputStream& output) { serialize(data, output); });
    writeDocument(document, stream);
}

void DigitalSignatureSerializer::serialize(const SignatureRecord& data, OutputStream& stream) {
    wakeXerces();
    const auto document = XercesHelper::createDocument();
    document->setXmlStandalone(true);
    DOMElement* const root = XercesHelper::appendElement(document.get(), m_xerces->names.signature);
    XercesHelper::setElementAttribute(root, m_xerces->names.id,
                                      SIGNATURE_ID_PREFIX.text() + data.m_signatureId);
    XercesHelper::setElementAttribute(root, m_xerces->names.xmlns, NAMESPACE.text());
    appendCopy(root, *buildSignedInfo(data));
    appendTextElement(root, m_xerces->names.signatureValue, data.m_signatureValueInXML);
    if (data.m_keyValue || data.m_certificate)
        writeKeyInfo(XercesHelper::appendElement(root, m_xerces->names.keyInfo), data);
    appendCopy(root, *buildPackageObject(data.m_content));
    withWriter([&](xercesc::DOMLSSerializer& writer) {
        XercesHelper::writeDocumentToStream(&writer, document.get(), stream);
    });
}

void DigitalSignatureSerializer::writeKeyInfo(DOMElement* keyInfo, const SignatureRecord& data) const {
    if (data.m_keyValue) {
        throwIfNoKeySize(data.m_signatureParams.getSignatureMethod());
        DOMElement* const keyValue = XercesHelper::appendElement(keyInfo, m_xerces->names.keyValue);
        DOMElement* const rsaKeyValue = XercesHelper::appendElement(keyValue, m_xerces->names.rsaKeyValue);
        appendTextElement(rsaKeyValue, m_xerces->names.modulus, data.m_keyValue->modulus);
        appendTextElement(rsaKeyValue, m_xerces->names.exponent, data.m_keyValue->exponent);
    }
    if (data.m_certificate) {
        DOMElement* const x509Data = XercesHelper::appendElement(keyInfo, m_xerces->names.x509Data);
        const auto append = [&](const bedrock::certificates::X509Certificate& certificate) {
            appendTextElement(x509Data, m_xerces->names.x509Certificate,
                              toString(certificate.getAsString(), false));
        };
        append(*data.m_certificate);
        if (data.m_certificateChain)
            for (const auto& certificate : data.m_certificateChain->getCertificates())
                append(certificate);
    }
}

void DigitalSignatureSerializer::toText(const DOMElement* element, std::u16string& result) {
    translateDocumentFailures([&] {
        withWriter([&](xercesc::DOMLSSerializer& writer) {
            XercesErrorHandler handler;
            const std::unique_ptr<char16_t, XercesTextDeleter> text(translateXercesFailures([&] {
                const ErrorHandlerAttachment attachment(writer.getDomConfig(), handler);
                return writer.writeToString(element);
            }));
            handler.throwIfError();
            if (!text)
                throw InvalidXMLDocument("The element can't be written");
            result = text.get();
        });
    });
}

} // namespace opc::model
