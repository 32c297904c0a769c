#include "checks/signatures/SignatureChecks.hpp"
#include "checks/signatures/SubjectPackage.hpp"

#include <bedrock/certificates/CertificateValidationOptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/codesigning_verifier/FingerprintStore.hpp>
#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/DigitalSignature.hpp>
#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/DigitalSignatureVerificationStatus.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/physical/LenientPackage.hpp>

#include <algorithm>

namespace opc::inspection {

namespace {

Place placeOfSignature(const model::DigitalSignature& signature) {
    Place place;
    place.part = "/_xmlsignatures/" + toUDEString(signature.getName()) + ".xml";
    return place;
}

constexpr int NO_KEY = 103; // or one that can't be used

/// Who signed isn't asked: nobody says here whom to trust.
void verify(model::DigitalSignatureManager& manager, const model::DigitalSignature& signature,
            Findings& findings) {
    bedrock::codesigning_verifier::FingerprintStore anybody;
    anybody.setSkippingVerification(true);
    try {
        if (manager.verifySignature(signature, anybody, {}, {}).isErrorFromSignature())
            findings.add("M6.30", placeOfSignature(signature),
                         "The signature is broken: what it covers has changed since it was signed");
    } catch (const model::InvalidSignature& e) {
        if (e.getErrorCode().value() != NO_KEY)
            throw;
        findings.add("M6.30", Severity::Info, placeOfSignature(signature),
                     "The signature can't be verified without a key, which it doesn't hold");
    }
}

void verifyAll(const Subject& subject, Findings& findings) {
    SubjectPackage store(subject);
    physical::LenientPackage lenient(store);
    model::Package package(lenient);
    model::DigitalSignatureManager manager(package);
    package.open(interfaces::OpenMode::ReadOnly);
    for (const model::DigitalSignature& signature : manager.getSignatures())
        verify(manager, signature, findings);
}

} // namespace

void checkOwnSignatures(const Subject& subject, const std::vector<FoundSignature>& signatures,
                        Findings& findings) {
    const auto isOwn = [](const FoundSignature& signature) { return signature.form == SignatureForm::Own; };
    const auto first = std::find_if(signatures.begin(), signatures.end(), isOwn);
    if (first == signatures.end() || !findings.wants("M6.30"))
        return;
    try {
        verifyAll(subject, findings);
    } catch (const Exception& e) {
        std::string reason = e.what();
        if (*e.details() != '\0')
            reason += std::string("; ") + e.details();
        findings.add("M6.30", placeIn(*first->part), "The signatures can't be verified: " + reason);
    }
}

} // namespace opc::inspection
