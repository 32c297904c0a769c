#pragma once

#include "coreproperties/CorePropertiesSerializer.hpp"
#include "support/PackageContent.hpp"

#include <string>

namespace opc::test {

/// Compares reading core properties with the scanner and by the parser alone.
class CorePropertiesComparison {
public:
    /// Whether the scanner recognises the document.
    static bool isRecognised(const Bytes& document);

    /// Compares everything that was read, or the class and the message of the failure.
    /// @return the differences; empty if there are none, or if the scanner leaves the document to the parser
    std::string findDifference(const Bytes& document);

private:
    std::string read(const Bytes& document, bool scanning);

    model::CorePropertiesSerializer serializer;
};

} // namespace opc::test
