#include "signatures/document/SignatureTrees.hpp"

#include "signatures/document/SignatureElements.hpp"
#include "signatures/document/SignatureFilling.hpp"
#include "signatures/document/SignatureRecords.hpp"
#include "signatures/document/TextElement.hpp"
#include "xml/DocumentFailures.hpp"
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

struct XercesTextDeleter {
    void operator()(char16_t* text) const { xercesc::XMLPlatformUtils::fgMemoryManager->deallocate(text); }
};

/// The text of a document as Xerces writes it.
std::u16string textOf(const xercesc::DOMDocument* document) {
    std::u16string text;
    translateDocumentFailures([&] {
        const auto writer = XercesHelper::createWriter();
        XercesHelper::writeDocumentToString(writer.get(), document, text, XmlDeclaration::Omit);
    });
    return text;
}

} // namespace

template <typename Operation>
auto SignatureTrees::withWriter(Operation&& operation) {
    if (!textWriter)
        textWriter = XercesHelper::createWriter();
    try {
        return operation(*textWriter);
    } catch (...) {
        // A writer that failed would omit the namespace declarations from now on.
        textWriter.reset();
        throw;
    }
}

void SignatureTrees::serialize(const SignatureRecord& data, OutputStream& stream) {
    const auto document = XercesHelper::createDocument();
    document->setXmlStandalone(true);
    DOMElement* const root = XercesHelper::appendElement(document.get(), names.signature);
    XercesHelper::setElementAttribute(root, names.id, SIGNATURE_ID_PREFIX.text() + data.m_signatureId);
    XercesHelper::setElementAttribute(root, names.xmlns, vocabulary::signatures::NAMESPACE.text());
    appendCopy(root, *buildSignedInfo(data));
    appendTextElement(root, names.signatureValue, data.m_signatureValueInXML);
    if (data.m_keyValue || data.m_certificate)
        writeKeyInfo(XercesHelper::appendElement(root, names.keyInfo), data);
    appendCopy(root, *buildPackageObject(data.m_content));
    withWriter([&](xercesc::DOMLSSerializer& writer) {
        XercesHelper::writeDocumentToStream(&writer, document.get(), stream);
    });
}

void SignatureTrees::writeKeyInfo(DOMElement* keyInfo, const SignatureRecord& data) const {
    if (data.m_keyValue) {
        throwIfNoKeySize(data.m_signatureParams.getSignatureMethod());
        DOMElement* const keyValue = XercesHelper::appendElement(keyInfo, names.keyValue);
        DOMElement* const rsaKeyValue = XercesHelper::appendElement(keyValue, names.rsaKeyValue);
        appendTextElement(rsaKeyValue, names.modulus, data.m_keyValue->modulus);
        appendTextElement(rsaKeyValue, names.exponent, data.m_keyValue->exponent);
    }
    if (data.m_certificate) {
        DOMElement* const x509Data = XercesHelper::appendElement(keyInfo, names.x509Data);
        const auto append = [&](const bedrock::certificates::X509Certificate& certificate) {
            appendTextElement(x509Data, names.x509Certificate, toString(certificate.getAsString(), false));
        };
        append(*data.m_certificate);
        if (data.m_certificateChain)
            for (const auto& certificate : data.m_certificateChain->getCertificates())
                append(certificate);
    }
}

void SignatureTrees::toText(const DOMElement* element, std::u16string& result) {
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

std::u16string SignatureTrees::writeSignedInfo(const SignatureRecord& record) {
    return textOf(buildSignedInfo(record).get());
}

std::u16string SignatureTrees::writePackageObject(const SignatureContent& content) {
    return textOf(buildPackageObject(content).get());
}

} // namespace opc::model
