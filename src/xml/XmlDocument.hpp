#pragma once

#include <opc/core/OutputStream.hpp>

#include <memory>
#include <string_view>

namespace opc::model {

/// A document that Xerces builds, element by element, and writes.
class XmlDocument {
public:
    enum class Form {
        Part,       ///< as a part has it: standalone, with line breaks
        SignedText, ///< as signatures are made over it
    };

    XmlDocument() = default;
    XmlDocument(const XmlDocument&) = delete;
    XmlDocument& operator=(const XmlDocument&) = delete;
    virtual ~XmlDocument() = default;

    /// Appends an element to the innermost open one, and opens it.
    /// @param namespaceURI   of null for a document without namespaces
    /// @param qualifiedName  without a prefix, if the namespace is the default one
    /// @throws InvalidXMLDocument
    virtual void open(std::u16string_view namespaceURI, std::u16string_view qualifiedName) = 0;

    /// Closes the innermost open element.
    virtual void close() = 0;

    /// @name On the innermost open element
    /// @throws InvalidXMLDocument
    /// @{
    virtual void setAttribute(std::u16string_view namespaceURI, std::u16string_view qualifiedName,
                              std::u16string_view value) = 0;
    virtual void setText(std::u16string_view text) = 0;
    /// @}

    void setAttribute(std::u16string_view name, std::u16string_view value) { setAttribute({}, name, value); }

    /// @throws InvalidXMLDocument  a text that XML can't hold
    virtual void write(OutputStream& stream) const = 0;
};

std::unique_ptr<XmlDocument> makeXmlDocument(XmlDocument::Form form);

} // namespace opc::model
