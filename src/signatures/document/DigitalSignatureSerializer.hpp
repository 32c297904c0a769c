#pragma once

#include "signatures/document/SignatureNames.hpp"
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
struct ScannedSignature;

/// Reads and writes signature parts, one after the other, for one thread at a time. It scans parts in the form that
/// it writes itself. A validating parser reads all others; Xerces is initialised for the first of these.
///
/// The form is the XML Signature profile of ECMA-376 Part 2. This class doesn't check whether a signature holds.
class DigitalSignatureSerializer {
public:
    DigitalSignatureSerializer();
    DigitalSignatureSerializer(const DigitalSignatureSerializer&) = delete;
    DigitalSignatureSerializer& operator=(const DigitalSignatureSerializer&) = delete;
    ~DigitalSignatureSerializer();

    /// Writes the whole document, or nothing if it can't be built. Doesn't close the stream.
    /// @throws InvalidPartContent  XML can't hold a text
    /// @throws opc::Exception      there is a key value, but the parameters of `data` have no key size
    void writeSignature(const SignatureRecord& data, OutputStream& stream);

    /// Fills `data`, which must be new. After a failure, drop `data`; this object can be used again.
    ///
    /// Time and memory grow in proportion to the document, whatever it holds, as long as they do so in parsing;
    /// `SignatureLimits` refuses other documents. Measured on one core, with the parser: 1,000,000 references
    /// (154 MB) 8 s and 2.5 GB, an attribute of 100 MB 2.5 s and 1.9 GB; at most 70 bytes for a byte, where all
    /// elements are empty and have short names.
    ///
    /// @param stream  open, at the first byte; read to its end and not closed
    /// @throws InvalidPartContent  the document breaks the schema or the form
    /// @throws NotImplemented      it refers to signed properties in the way of XML Signature or XAdES
    /// @throws opc::Exception      a signature algorithm or a key size isn't supported
    /// @throws bedrock::crypto::utils::Exception, bedrock::certificates::X509CertificateException  a text isn't
    /// Base64, or bytes aren't a certificate
    void readSignature(InputStream& stream, SignatureRecord& data);

    /// Does the same with the validating parser alone.
    void parseSignature(InputStream& stream, SignatureRecord& data);

    /// The XML of an element as text, with the namespace declarations that it needs on its own.
    /// @param result  receives the text; its old content is lost
    /// @throws InvalidPartContent
    void toText(const xercesc::DOMElement* element, std::u16string& result);

private:
    IndexedElement getRequiredElement(const IndexedElement& element, const XercesString& name,
                                      const XercesString& namespaceURI) const;
    void getRequiredElementText(const IndexedElement& element, const XercesString& name, std::u16string& text,
                                const XercesString& namespaceURI) const;
    static std::u16string getRequiredAttribute(const IndexedElement& element, const XercesString& name,
                                               const char* message);

    static void takeScanned(ScannedSignature& scanned, SignatureRecord& data);
    static void takeScannedValueAndKey(const ScannedSignature& scanned, SignatureRecord& data);

    void parse(InputStream& stream, SignatureRecord& data);
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

    /// Runs `operation` with the writer, and drops the writer if it fails.
    template <typename Operation>
    auto withWriter(Operation&& operation);

    void serialize(const SignatureRecord& data, OutputStream& stream);
    void writeKeyInfo(xercesc::DOMElement* root, const SignatureRecord& data) const;

    /// The objects for reading and writing documents in another form.
    struct Xerces {
        Xerces();

        XercesGuard guard;
        ReusedParser parser;
        std::unique_ptr<xercesc::DOMLSSerializer, XercesDeleter> writer; ///< made when needed
        SignatureNames names;
        PackageSignatureNames packageNames{u""};
        XercesString packageNamespace{vocabulary::signatures::PACKAGE_NAMESPACE.text()};
    };

    Xerces& wakeXerces();

    std::unique_ptr<Xerces> m_xerces; ///< null until needed
};

} // namespace opc::model
