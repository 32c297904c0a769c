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

/// What the library does with Xerces: build and search a DOM, read and write whole documents.
///
/// Xerces objects are passed by pointer, never null unless said so. Elements belong to their document, and a
/// document that was read to its parser. A parser, a serialiser or a document serves one thread at a time.
/// A failure of Xerces leaves as `InvalidXMLDocument` with the message of Xerces, or as `std::bad_alloc` if it
/// got no memory: the parser or serialiser in hand can't be used again then.
class OPC_MODEL_EXPORT XercesHelper {
public:
    XercesHelper() = delete;

    /// @name Building
    /// Each gives the new element, which stands last in its parent.
    /// @throws InvalidXMLDocument  if the name isn't valid or may not stand there
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
    /// They look at all descendants of `element`, at any depth and in document order, and not at the element
    /// itself. A tag name counts with its prefix; "*" stands for any.
    /// @{

    /// The first match, or null.
    static xercesc::DOMElement* getElement(const xercesc::DOMElement* element, const XercesString& name);
    static xercesc::DOMElement* getElementNS(const xercesc::DOMElement* element,
                                             const XercesString& namespaceURI, const XercesString& localName);

    /// All matches.
    static std::vector<xercesc::DOMElement*> getElements(const xercesc::DOMElement* element,
                                                         const XercesString& name);
    static std::vector<xercesc::DOMElement*> getElementsNS(const xercesc::DOMElement* element,
                                                           const XercesString& namespaceURI,
                                                           const XercesString& localName);

    /// @}

    /// @name Reading values
    /// @{

    /// @return whether the attribute is there; if not, `value` stays as it was
    static bool getElementAttribute(const xercesc::DOMElement* element, const XercesString& name,
                                    std::u16string& value);
    static bool getElementAttributeNS(const xercesc::DOMElement* element, const XercesString& namespaceURI,
                                      const XercesString& localName, std::u16string& value);

    /// The value of the first child alone: text behind a comment or a CDATA section isn't part of it, and a
    /// comment or an instruction that stands first gives its own.
    /// @param element  may be null
    /// @return false if `element` is null; `text` is emptied in any case
    static bool getElementText(const xercesc::DOMElement* element, std::u16string& text);

    /// As `getElementText`, without ASCII white space at the end. White space in front stays.
    static bool getTrimmedElementText(const xercesc::DOMElement* element, std::u16string& text);

    /// @}

    /// @name Making
    /// What they give may be kept only while the caller holds a `XercesGuard`.
    /// @{

    /// An empty document: no root element and no doctype.
    static std::unique_ptr<xercesc::DOMDocument, XercesDeleter> createDocument();

    /// A parser with a grammar pool of its own.
    static std::unique_ptr<xercesc::DOMLSParser, XercesDeleter> createParser();

    /// A serialiser with all parameters at their defaults. The form that signatures are made over rests on
    /// it.
    static std::unique_ptr<xercesc::DOMLSSerializer, XercesDeleter> createWriter();

    static std::unique_ptr<xercesc::DOMLSSerializer, XercesDeleter> createPrettyPrintingWriter();

    /// @}

    /// @name Reading documents
    ///
    /// A DTD in any form, another encoding than UTF-8 and UTF-16, and documents built to exhaust the reader
    /// are refused: elements nested deeper than 1000, more than 10000 comments, more than 2000 different names
    /// or namespaces, more than 1000 attributes on an element or 4000 on elements nested in each other, more
    /// than 1000 IDs that fall together in the parser's table, and tags and comments of more than 4 MiB. Each
    /// document is read as by a new parser. Nothing outside the stream is opened,
    /// whatever the document asks for, unless the caller passes a schema location.
    ///
    /// The document stays the parser's and lives until its `resetDocumentPool()` or release: the caller
    /// doesn't release it. A parser reads any number of documents, one after the other, also after a failure.
    /// Exceptions of the stream pass unchanged.
    ///
    /// @param validate         whether the document must match the grammars that the parser has cached; once
    ///                         on, validation stays on for this parser
    /// @param schemaLocation   where a further schema stands; empty for none
    /// @param schemaNamespace  the namespace of that schema; empty for a schema without one
    /// @throws InvalidXMLDocument
    /// @{

    /// @param stream  open, at the first byte. It is read to its end, and not closed.
    static xercesc::DOMDocument* readDocumentFromStream(xercesc::DOMLSParser* parser, InputStream& stream,
                                                        bool validate, const std::u16string& schemaLocation,
                                                        const std::u16string& schemaNamespace);

    /// Reads `text` as UTF-16, whatever its own XML declaration says of the encoding.
    static xercesc::DOMDocument* readDocumentFromString(xercesc::DOMLSParser* parser,
                                                        const std::u16string& text, bool validate,
                                                        const std::u16string& schemaLocation,
                                                        const std::u16string& schemaNamespace);

    /// @}

    /// @name Writing documents
    /// A document with a doctype, or with characters that XML can't hold, is refused before a byte goes out.
    /// A serialiser that failed can't be used again: it leaves out the namespace declarations that the failed
    /// document had open.
    /// @throws InvalidXMLDocument
    /// @{

    /// Writes with an XML declaration, a new document in UTF-8. The stream isn't closed. Once it says that it
    /// is done it is given no more bytes, which isn't an error.
    static void writeDocumentToStream(xercesc::DOMLSSerializer* serializer,
                                      const xercesc::DOMDocument* document, OutputStream& stream);

    /// Writes in UTF-16.
    /// @param result       takes the text in place of what it held
    /// @param declaration  a serialiser that was once told `Omit` goes on omitting it
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
