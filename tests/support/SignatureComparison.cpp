#include "support/SignatureComparison.hpp"

#include "signatures/document/SignatureScanner.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"
#include "support/Outcome.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>

#include <sstream>

namespace opc::test {

using namespace model;

bool SignatureComparison::isRecognised(const Bytes& document) {
    ScannedSignature scanned;
    return scanSignature(toText(document), scanned);
}

std::string SignatureComparison::findDifference(const Bytes& document) {
    return isRecognised(document) ? differenceOf(read(document, true), read(document, false)) : std::string();
}

std::string SignatureComparison::read(const Bytes& document, bool scanning) {
    DigitalSignatureData data;
    ByteArrayInAdaptor stream(document);
    std::string failure = outcomeOf(
        [&] { scanning ? serializer.readSignature(stream, data) : serializer.parseSignature(stream, data); });
    if (!failure.empty())
        return failure;
    std::ostringstream text;
    data.prettyPrint(text);
    text << data.m_certificateChain.has_value() << '\n';
    for (const unsigned char byte : data.m_signatureValue)
        text << static_cast<unsigned>(byte) << ' ';
    for (const auto& [id, object] : data.m_objects)
        text << (object.objectID == id);
    return text.str();
}

} // namespace opc::test
