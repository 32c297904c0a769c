#include "FuzzTarget.hpp"

#include "signatures/document/DigitalSignatureSerializer.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"

#include <bedrock/certificates/CertificateValidationOptions.hpp>
#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/codesigning_verifier/FingerprintStore.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>
#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/DigitalSignatureVerificationStatus.hpp>
#include <opc/model/Errors.hpp>

#include <sstream>

using namespace opc;
using namespace opc::fuzz;
using namespace opc::model;

namespace {

/// @return whether a signature was read
bool read(DigitalSignatureSerializer& serializer, const Bytes& bytes, DigitalSignatureData& data) {
    ByteArrayInAdaptor stream(bytes);
    return attempt<InvalidPartContent, NotImplemented, Exception, bedrock::crypto::utils::Exception,
                   bedrock::certificates::X509CertificateException>(
        [&] { serializer.readSignature(stream, data); });
}

/// @return whether the signature could be written
bool write(DigitalSignatureSerializer& serializer, const DigitalSignatureData& data, Bytes& bytes) {
    ByteArrayOutAdaptor stream(bytes);
    const bool written =
        attempt<InvalidPartContent, Exception>([&] { serializer.writeSignature(data, stream); });
    require(written || bytes.empty(), "what can't be written isn't begun");
    return written;
}

/// Checks the value by the certificate in the signature, which it trusts.
void verify(const DigitalSignatureData& data) {
    bedrock::codesigning_verifier::FingerprintStore fingerprints;
    fingerprints.setSkippingVerification(true);
    bedrock::certificates::TrustStore trusted; // an empty one means the certificates of the system
    if (data.m_certificate && !data.m_certificate->empty())
        trusted.addCertificate(*data.m_certificate);
    try {
        const auto status = data.verifyWithFingerprints(fingerprints, trusted, {});
        require(!status.isErrorFromSignature() || !status.isErrorFromCertificateChain(),
                "a code stands for the signature or for the certificate");
    } catch (const InvalidSignature& e) {
        require(e.getErrorCode().value() != 0, "a failure has a code");
    }
}

void use(DigitalSignatureData& data) {
    require(data.m_objects.count(u"idPackageObject") == 1, "the package object was read");
    std::ostringstream text;
    data.prettyPrint(text);
    attempt<InvalidURI, InvalidPartName>([&] { data.computeSignaturePartName(); });
    verify(data);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static DigitalSignatureSerializer serializer; // compiling its schemas takes longer than reading
    DigitalSignatureData data;
    if (!read(serializer, Bytes(bytes, bytes + size), data))
        return 0;
    use(data);
    Bytes written;
    if (!write(serializer, data, written))
        return 0;
    // Only the package object is written of what was read, so the result can refer to something that doesn't exist.
    DigitalSignatureData again;
    if (!read(serializer, written, again))
        return 0;
    Bytes twice;
    require(write(serializer, again, twice), "what was written and read can be written");
    require(written == twice, "what was written and read is written as it was");
    return 0;
}
