#pragma once

#include "support/PackageContent.hpp"
#include "xml/EmbeddedSchemas.hpp"

#include <opc/model/XercesDeleter.hpp>
#include <opc/model/XercesGuard.hpp>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <xercesc/util/XercesDefs.hpp>

XERCES_CPP_NAMESPACE_BEGIN
class DOMLSParser;
XERCES_CPP_NAMESPACE_END

namespace opc::test {

/// Holds what a scanner of plain documents finds against what the validating parser finds in the same bytes.
class ScannerComparison {
public:
    using Attributes = std::vector<std::pair<std::string, std::string>>;
    using Elements = std::vector<std::pair<std::string, Attributes>>;

    /// @param kind  the schema of relationships parts or of content types streams
    explicit ScannerComparison(const model::EmbeddedSchema& kind);
    ~ScannerComparison();

    /// The children of the root with their attributes in the order of names, as the scanner finds them: those of
    /// one name together.
    /// @return whether it recognises the document
    bool scan(const Bytes& document, Elements& elements) const;

    /// The same as the parser finds them.
    /// @return whether the document is valid
    bool parse(const Bytes& document, Elements& elements);

    /// Compares elements, attributes and their order, and then what reading makes of the document with and
    /// without the scanner: the values, or the class and the message of the failure.
    /// @return what differs; empty if nothing does, or if the scanner leaves the document to the parser
    std::string findDifference(const Bytes& document);

private:
    bool isRelationships() const;

    model::XercesGuard guard;
    const model::EmbeddedSchema& schema;
    std::unique_ptr<xercesc::DOMLSParser, model::XercesDeleter> parser;
};

} // namespace opc::test
