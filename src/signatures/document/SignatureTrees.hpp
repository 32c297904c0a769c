#pragma once

#include "signatures/document/SignatureNames.hpp"
#include "signatures/document/SignatureXml.hpp"
#include "xml/ReusedParser.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>
#include <opc/model/XercesDeleter.hpp>
#include <opc/model/XercesGuard.hpp>

#include <memory>
#include <string>

XERCES_CPP_NAMESPACE_BEGIN
class DOMElement;
class DOMLSParser;
class DOMLSSerializer;
XERCES_CPP_NAMESPACE_END

namespace opc::model {

class IndexedElement;
struct Reference;
struct SignatureRecord;

/// Builds and searches trees of signature documents.
class SignatureTrees final : public SignatureXml {
public:
    SignatureTrees();

    void parse(InputStream& stream, SignatureRecord& data) override;
    void serialize(const SignatureRecord& data, OutputStream& stream) override;
    std::u16string writeSignedInfo(const SignatureRecord& record) override;
    std::u16string writePackageObject(const SignatureContent& content) override;

    /// The XML of an element as text, with the namespace declarations that it needs to stand alone.
    /// @param result  is replaced by the text
    /// @throws InvalidPartContent
    void toText(const xercesc::DOMElement* element, std::u16string& result);

private:
    IndexedElement getRequiredElement(const IndexedElement& element, const XercesString& name,
                                      const XercesString& namespaceURI) const;
    void getRequiredElementText(const IndexedElement& element, const XercesString& name, std::u16string& text,
                                const XercesString& namespaceURI) const;
    static std::u16string getRequiredAttribute(const IndexedElement& element, const XercesString& name,
                                               const char* message);

    void readDocument(const IndexedElement& root, SignatureRecord& data);
    void readValueAndKey(const IndexedElement& root, SignatureRecord& data) const;
    void readKeyValue(const IndexedElement& keyValue, SignatureRecord& data) const;
    void readCertificates(const IndexedElement& x509Data, SignatureRecord& data) const;
    void readObjects(const IndexedElement& root, SignatureRecord& data);
    void readPackageObject(const IndexedElement& object, SignatureRecord& data) const;
    void readManifest(const IndexedElement& manifest, SignatureRecord& data) const;
    void readSignatureProperties(const IndexedElement& properties, SignatureRecord& data) const;
    void readSignatureTime(const IndexedElement& property, SignatureRecord& data) const;
    void readSignedInfoMethods(const IndexedElement& root, SignatureRecord& data) const;
    void readSignedInfoReferences(const IndexedElement& root, SignatureRecord& data);
    void readReference(const IndexedElement& element, Reference& reference) const;
    void readTransform(const IndexedElement& element, Reference& reference) const;

    /// Runs `operation` with the writer, which doesn't outlive a failure in it.
    template <typename Operation>
    auto withWriter(Operation&& operation);

    void writeKeyInfo(xercesc::DOMElement* root, const SignatureRecord& data) const;

    const XercesGuard guard;
    ReusedParser parser;
    std::unique_ptr<xercesc::DOMLSSerializer, XercesDeleter> textWriter; ///< made when it is needed
    const SignatureNames names;
    const PackageSignatureNames packageNames{u""};
    const XercesString packageNamespace{vocabulary::signatures::PACKAGE_NAMESPACE.text()};
};

} // namespace opc::model
