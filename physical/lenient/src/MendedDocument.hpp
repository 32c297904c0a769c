#pragma once

#include "Document.hpp"

#include <opc/model/XercesDeleter.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesString.hpp>

#include <xercesc/util/XercesDefs.hpp>

#include <memory>
#include <string>

XERCES_CPP_NAMESPACE_BEGIN
class DOMDocument;
class DOMElement;
class DOMLSParser;
XERCES_CPP_NAMESPACE_END

namespace opc::physical::lenient {

/// Whether a document could have elements with a namespace prefix: whether it declares one. Asked first, since
/// nearly no document does, and parsing takes long.
bool mayHavePrefixes(const Bytes& document);

/// A document, to be given to the model in another form. Read by the model's own rules, but not validated: the
/// model does that.
class MendedDocument {
public:
    /// @throws opc::Exception  the document can't be read
    explicit MendedDocument(const Bytes& document);
    MendedDocument(const MendedDocument&) = delete;
    MendedDocument& operator=(const MendedDocument&) = delete;
    ~MendedDocument();

    xercesc::DOMElement* root() const;

    /// Takes the prefix from every element of a namespace, which becomes the default one there. Everything else
    /// means what it meant.
    /// @return whether there were any
    bool removePrefixes(const model::XercesString& namespaceURI);

    /// The document in UTF-8.
    Bytes toBytes() const;

private:
    const model::XercesGuard guard;
    std::unique_ptr<xercesc::DOMLSParser, model::XercesDeleter> parser;
    xercesc::DOMDocument* document;
};

} // namespace opc::physical::lenient
