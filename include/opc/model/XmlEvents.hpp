#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/model/Export.hpp>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace opc::model {

/// A place in an XML document. Both numbers count from 1.
struct XmlPlace {
    std::uint64_t line;
    std::uint64_t column;
};

/// An attribute of an element, without declarations of namespaces. References in the value are resolved.
struct XmlAttribute {
    std::u16string_view namespaceURI; ///< empty if the name has no prefix
    std::u16string_view localName;
    std::u16string_view value;
    std::u16string_view prefix;
};

/// A declaration of a namespace (`xmlns`, `xmlns:a`).
struct XmlNamespaceDeclaration {
    std::u16string_view prefix; ///< empty for the default namespace
    std::u16string_view namespaceURI;
};

/// The start tag of an element. All texts are valid during the call only.
class XmlElement {
public:
    virtual std::u16string_view namespaceURI() const = 0;
    virtual std::u16string_view localName() const = 0;
    virtual std::u16string_view prefix() const = 0;
    virtual std::size_t attributeCount() const = 0;
    virtual XmlAttribute attribute(std::size_t index) const = 0;
    virtual std::size_t declarationCount() const = 0;
    virtual XmlNamespaceDeclaration declaration(std::size_t index) const = 0;

    /// The value of an attribute; a view of null if the element doesn't have it.
    virtual std::u16string_view valueOf(std::u16string_view namespaceURI,
                                        std::u16string_view localName) const {
        for (std::size_t i = 0; i < attributeCount(); ++i) {
            const XmlAttribute found = attribute(i);
            if (found.localName == localName && found.namespaceURI == namespaceURI)
                return found.value;
        }
        return {};
    }

protected:
    XmlElement() = default;
    ~XmlElement() = default;
    XmlElement(const XmlElement&) = default;
    XmlElement& operator=(const XmlElement&) = default;
};

/// Receives what `readXmlDocument` finds, in the order of the document. An exception from a function ends the reading
/// and leaves `readXmlDocument`.
class XmlEvents {
public:
    virtual ~XmlEvents() = default;

    /// The version of XML, "1.0" or "1.1". Not called without a declaration.
    virtual void onVersion(std::u16string_view version) { (void)version; }

    /// @param encoding  the name in the XML declaration; empty if it has none. Not called without a declaration
    virtual void onDeclaration(std::u16string_view encoding) { (void)encoding; }

    /// @param behind  the place after the start tag
    virtual void onStart(const XmlElement& element, const XmlPlace& behind) = 0;

    /// Called for empty elements too.
    virtual void onEnd() {}

    /// A piece of text, with references resolved. One text can come in several pieces.
    virtual void onText(std::u16string_view text) { (void)text; }

    /// A comment, also outside the root element.
    virtual void onComment(std::u16string_view text) { (void)text; }

    /// A processing instruction, also outside the root element. `data` is what follows the white space behind the target.
    virtual void onInstruction(std::u16string_view target, std::u16string_view data) {
        (void)target;
        (void)data;
    }

protected:
    XmlEvents() = default;
    XmlEvents(const XmlEvents&) = default;
    XmlEvents& operator=(const XmlEvents&) = default;
};

/// Reads any XML document, with namespaces and without a schema, and reports its content to `events`. Memory doesn't
/// grow with the document. Nothing outside the document is opened. Any number of threads may read at the same time.
///
/// Refuses a document type declaration, and a document that is built to exhaust a reader: elements nested deeper than
/// 1,000, more than 1,000 attributes of an element, 10,000 comments, 2,000 different names, or 4 MiB in one tag. Refuses
/// encodings other than UTF-8, UTF-16, UTF-32, ASCII, ISO 8859, Windows 1250 to 1258, KOI8 and EUC, too.
///
/// @param stream  open, at its first byte. A document of an unusual form is read again from the beginning: then the
///                stream is closed and opened
/// @throws InvalidXMLDocument  the document isn't well-formed, or is refused; `details()` names the line and the column
/// @throws the exceptions of the stream and of `events`, unchanged
OPC_MODEL_EXPORT void readXmlDocument(InputStream& stream, XmlEvents& events);

} // namespace opc::model
