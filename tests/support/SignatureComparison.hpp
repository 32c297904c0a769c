#pragma once

#include "signatures/document/DigitalSignatureSerializer.hpp"
#include "support/PackageContent.hpp"

#include <string>

namespace opc::test {

/// Compares reading a signature document with the scanner and by the parser alone.
class SignatureComparison {
public:
    /// Whether the scanner recognises the document.
    static bool isRecognised(const Bytes& document);

    /// Compares everything that was read, or the class and the message of the failure.
    /// @return the differences; empty if there are none, or if the scanner leaves the document to the parser
    std::string findDifference(const Bytes& document);

private:
    std::string read(const Bytes& document, bool scanning);

    model::DigitalSignatureSerializer serializer;
};

} // namespace opc::test
