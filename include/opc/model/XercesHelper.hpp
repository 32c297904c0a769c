#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>
#include <opc/model/Export.hpp>
#include <opc/model/XercesDeleter.hpp>
#include <opc/model/XercesString.hpp>
#include <opc/model/XmlDeclaration.hpp>

#include <memory>
#include <string>
#include <vector>

XERCES_CPP_NAMESPACE_BEGIN
class DOMDocument;
class DOMElement;
class DOMLSParser;
class DOMLSSerializer;
XERCES_CPP_NAMESPACE_END

namespace opc::model {

/// The operations of the library on Xerces: building and searching a DOM, reading and writing documents.
///
/// Pointers to Xerces objects are never null, except where the documentation says so. A document owns its elements, and a
/// parser owns the documents that it has read. Use a parser, a serialiser or a document from one thread at a time.
/// Failures of Xerces become `InvalidXMLDocument` with the message of Xerces. If Xerces gets no memory, `std::bad_alloc`
/// is thrown; don't use that parser or serialiser again.
class OPC_MODEL_EXPORT XercesHelper {
public:
    XercesHelper() = delete;

    /// @name Building
    /// Each returns the new element, which is the last child of its parent.
    /// @throws InvalidXMLDocument  the name isn't valid or isn't allowed there
    /// @{

    static xercesc::DOMElement* appendElement(xercesc::DOMDocument* document, const XercesString& name);
    static xercesc::DOMElement* appendElement(xercesc::DOMElement* parent, const XercesString& name);
    static xercesc::DOMElement* appendElementNS(xercesc::DOMDocument* document,
                                                const XercesString& namespaceURI,
                                                const XercesString& qualifiedName);
    static xercesc::DOMElement* appendElementNS(xercesc::DOMElement* parent, const XercesString& namespaceURI,
                                                const XercesString& qualifiedName);
    static void setElementAttribute(xercesc::DOMElement* element, const XercesString& name,
                                    const std::u16string& value);
    static void setElementAttributeNS(xercesc::DOMElement* element, const XercesString& namespaceURI,
                                      const XercesString& qualifiedName, const std::u16string& value);

    /// Replaces all children by one text node.
    static void setElementText(xercesc::DOMElement* element, const std::u16string& text);

    /// @}

    /// @name Searching
    /// These search all descendants of `element` in document order, but not the element itself. A name includes its
    /// prefix; "*" matches every name.
    /// @{

    /// @return the first match, or null
    static xercesc::DOMElement* getElement(const xercesc::DOMElement* element, const XercesString& name);
    static xercesc::DOMElement* getElementNS(const xercesc::DOMElement* element,
                                             const XercesString& namespaceURI, const XercesString& localName);

    /// @return all matches
    static std::vector<xercesc::DOMElement*> getElements(const xercesc::DOMElement* element,
                                                         const XercesString& name);
    static std::vector<xercesc::DOMElement*> getElementsNS(const xercesc::DOMElement* element,
                                                           const XercesString& namespaceURI,
                                                           const XercesString& localName);

    /// @}

    /// @name Reading values
    /// @{

    /// @return whether the element has the attribute; if not, `value` doesn't change
    static bool getElementAttribute(const xercesc::DOMElement* element, const XercesString& name,
                                    std::u16string& value);
    static bool getElementAttributeNS(const xercesc::DOMElement* element, const XercesString& namespaceURI,
                                      const XercesString& localName, std::u16string& value);

    /// Gives the value of the first child only: text after a comment or a CDATA section isn't part of it. If the first
    /// child is a comment or a processing instruction, this is its text.
    /// @param element  can be null
    /// @return false if `element` is null; then `text` is empty
    static bool getElementText(const xercesc::DOMElement* element, std::u16string& text);

    /// As `getElementText`, without ASCII white space at the end. White space at the start stays.
    static bool getTrimmedElementText(const xercesc::DOMElement* element, std::u16string& text);

    /// @}

    /// @name Making
    /// Keep the results only while a `XercesGuard` exists.
    /// @{

    /// An empty document: no root element and no doctype.
    static std::unique_ptr<xercesc::DOMDocument, XercesDeleter> createDocument();

    /// A parser with a grammar pool of its own.
    static std::unique_ptr<xercesc::DOMLSParser, XercesDeleter> createParser();

    /// A serialiser with the default parameters. Signatures are made over the form that it writes.
    static std::unique_ptr<xercesc::DOMLSSerializer, XercesDeleter> createWriter();

    static std::unique_ptr<xercesc::DOMLSSerializer, XercesDeleter> createPrettyPrintingWriter();

    /// @}

    /// @name Reading documents
    ///
    /// These refuse a DTD in any form, encodings other than UTF-8 and UTF-16, and documents made to exhaust the reader:
    /// elements nested deeper than 1000, more than 10000 comments, more than 2000 different names or namespaces, more
    /// than 1000 attributes on an element or 4000 on elements nested in each other, more than 1000 IDs with the same
    /// place in the parser's hash table, and tags or comments longer than 4 MiB. Each document is read as if by a new
    /// parser. Nothing outside the stream is opened, unless the caller passes a schema location.
    ///
    /// The parser owns the document, which lives until `resetDocumentPool()` or the release of the parser; the caller
    /// doesn't release it. A parser can read any number of documents one after the other, also after a failure.
    /// Exceptions of the stream pass unchanged.
    ///
    /// @param validate         whether the document must match the grammars that the parser has cached. Once switched on,
    ///                         validation stays on for this parser
    /// @param schemaLocation   the location of a further schema; empty for none
    /// @param schemaNamespace  the namespace of that schema; empty for a schema without a namespace
    /// @throws InvalidXMLDocument
    /// @{

    /// @param stream  open, at its first byte. It is read to its end and not closed
    static xercesc::DOMDocument* readDocumentFromStream(xercesc::DOMLSParser* parser, InputStream& stream,
                                                        bool validate, const std::u16string& schemaLocation,
                                                        const std::u16string& schemaNamespace);

    /// Reads `text` as UTF-16, whatever encoding its XML declaration names.
    static xercesc::DOMDocument* readDocumentFromString(xercesc::DOMLSParser* parser,
                                                        const std::u16string& text, bool validate,
                                                        const std::u16string& schemaLocation,
                                                        const std::u16string& schemaNamespace);

    /// @}

    /// @name Writing documents
    /// These refuse a document with a DTD, or with characters that XML doesn't allow, before they write a byte. Don't use
    /// a serialiser again after a failure: it would omit the namespace declarations that the failed document had open.
    /// @throws InvalidXMLDocument
    /// @{

    /// Writes the document with an XML declaration; a new document in UTF-8. The stream isn't closed. When the stream is
    /// done, the remaining bytes are dropped; this isn't an error.
    static void writeDocumentToStream(xercesc::DOMLSSerializer* serializer,
                                      const xercesc::DOMDocument* document, OutputStream& stream);

    /// Writes the document in UTF-16.
    /// @param result       receives the text
    /// @param declaration  after a call with `Omit` this serialiser always omits the declaration
    static void writeDocumentToString(xercesc::DOMLSSerializer* serializer,
                                      const xercesc::DOMDocument* document, std::u16string& result,
                                      const XmlDeclaration& declaration);

    /// @}

private:
    enum class XercesEncoding {
        UTF8 = 0,  ///< reading: found from the content; writing: the default of Xerces
        UTF16 = 1, ///< forced
    };

    static xercesc::DOMDocument* readDocumentHelper(xercesc::DOMLSParser* parser, InputStream& stream,
                                                    bool validate, const std::u16string& schemaLocation,
                                                    const std::u16string& schemaNamespace,
                                                    const XercesEncoding& encoding);
    static void writeDocumentHelper(xercesc::DOMLSSerializer* serializer,
                                    const xercesc::DOMDocument* document, OutputStream& stream,
                                    const XercesEncoding& encoding, const XmlDeclaration& declaration);
    static void throwIfDTDIsPresent(const xercesc::DOMDocument* document);
    static void throwIfUnsupportedEncoding(const xercesc::DOMDocument* document);
};

} // namespace opc::model
