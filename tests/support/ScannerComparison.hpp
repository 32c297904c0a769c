#pragma once

#include "support/PackageContent.hpp"
#include "xml/EmbeddedSchemas.hpp"

#include <opc/model/XercesGuard.hpp>

#include <string>

namespace opc::test {

/// Compares reading plain documents with the scanner and by the validating parser alone.
class ScannerComparison {
public:
    /// @param kind  the schema of relationships parts or of content types streams
    explicit ScannerComparison(const model::EmbeddedSchema& kind)
        : isOfRelationships(&kind == &model::schemas::RELATIONSHIPS) {}

    /// Whether the scanner recognises the document.
    bool isRecognised(const Bytes& document) const;

    /// Compares everything that was read, or the class and the message of the failure.
    /// @return the differences; empty if there are none, or if the scanner leaves the document to the parser
    std::string findDifference(const Bytes& document) const;

private:
    model::XercesGuard guard;
    bool isOfRelationships;
};

} // namespace opc::test
