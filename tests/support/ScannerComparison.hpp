#pragma once

#include "support/PackageContent.hpp"
#include "xml/EmbeddedSchemas.hpp"

#include <opc/model/XercesGuard.hpp>

#include <string>

namespace opc::test {

/// Holds what reading plain documents gives with the scanner against what it gives by the validating parser alone.
class ScannerComparison {
public:
    /// @param kind  the schema of relationships parts or of content types streams
    explicit ScannerComparison(const model::EmbeddedSchema& kind)
        : isOfRelationships(&kind == &model::schemas::RELATIONSHIPS) {}

    /// Whether the scanner recognises the document.
    bool isRecognised(const Bytes& document) const;

    /// Compares all that was read, or the class and the message of the failure.
    /// @return what differs; empty if nothing does, or if the scanner leaves the document to the parser
    std::string findDifference(const Bytes& document) const;

private:
    model::XercesGuard guard;
    bool isOfRelationships;
};

} // namespace opc::test
