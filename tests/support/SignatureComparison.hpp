#pragma once

#include "signatures/document/DigitalSignatureSerializer.hpp"
#include "support/PackageContent.hpp"

#include <string>

namespace opc::test {

/// Holds what reading a signature document gives with the scanner against what it gives by the parser alone.
class SignatureComparison {
public:
    /// Whether the scanner recognises the document.
    static bool isRecognised(const Bytes& document);

    /// Compares all that was read, or the class and the message of the failure.
    /// @return what differs; empty if nothing does, or if the scanner leaves the document to the parser
    std::string findDifference(const Bytes& document);

private:
    std::string read(const Bytes& document, bool scanning);

    model::DigitalSignatureSerializer serializer;
};

} // namespace opc::test
