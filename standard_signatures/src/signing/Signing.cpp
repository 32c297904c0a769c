#include <opc/standard_signatures/Signing.hpp>

#include "coverage/SignedContents.hpp"
#include "signing/Manifest.hpp"
#include "signing/NewDocument.hpp"
#include "signing/SignatureObjects.hpp"
#include "signing/SignatureStorage.hpp"
#include "signing/SigningPlan.hpp"

#include <bedrock/crypto/SignatureValue.hpp>
#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>

namespace opc::standard_signatures {

SigningRefused::~SigningRefused() = default;

namespace {

using bedrock::crypto::DigestAlgorithm;
using bedrock::crypto::PublicKeyKind;
using bedrock::crypto::SignatureScheme;

/// @throws SigningRefused  the key is too weak, or not that of the certificate
SignatureScheme checkSigner(const Signer& signer, const SigningOptions& options) {
    constexpr std::size_t LEAST_BITS = 1024;
    constexpr std::size_t ENOUGH_BITS = 2048;
    if (signer.key.empty())
        throw SigningRefused("There is no private key");
    if (!signer.certificate.empty() && signer.certificate.getPublicKey() != signer.key.getPublicKey())
        throw SigningRefused("The certificate isn't that of the private key");
    const PublicKeyKind kind = bedrock::crypto::describePublicKey(signer.key.getPublicKey());
    if (kind.algorithm == PublicKeyKind::Algorithm::EC)
        return SignatureScheme::ECDSA;
    if (kind.bits < (options.acceptWeak ? LEAST_BITS : ENOUGH_BITS))
        throw SigningRefused("An RSA key of " + std::to_string(kind.bits) + " bits is too weak");
    return kind.algorithm == PublicKeyKind::Algorithm::RSAPSS ? SignatureScheme::RSAPSS
                                                              : SignatureScheme::RSAPKCS1;
}

void throwIfWeak(DigestAlgorithm digest) {
    if (digest != DigestAlgorithm::SHA256 && digest != DigestAlgorithm::SHA384 &&
        digest != DigestAlgorithm::SHA512)
        throw SigningRefused("The digest isn't SHA-256, SHA-384 or SHA-512");
}

std::string claimedTime(const SigningOptions& options) {
    return toUDEString(convertTimeToString(options.time.value_or(std::chrono::system_clock::now())));
}

std::string shortName(const std::string& partName) {
    const std::string segment = partName.substr(partName.rfind('/') + 1);
    return segment.substr(0, segment.rfind('.'));
}

} // namespace

NewSignature sign(model::Package& package, interfaces::IPhysicalPackage& store, const Signer& signer,
                  const SigningOptions& options) {
    throwIfWeak(options.digest);
    const SignatureMethod& method = signatureMethodOf(checkSigner(signer, options), options.digest);
    const DigestMethod& digest = digestMethodOf(options.digest);
    PackageContents contents(store);
    const PackageMap map(contents);
    const SigningPlan plan = SigningPlan::make(contents, map, options);

    const std::string time = claimedTime(options);
    std::string objects = composePackageObject(composeManifest(plan, contents, digest), time);
    std::vector<std::string> ids{"idPackageObject"};
    if (map.hasMainDocument()) {
        objects += composeOfficeObject(options.comments);
        ids.emplace_back("idOfficeObject");
    }
    if (!signer.certificate.empty()) {
        objects += composeSignedProperties(signer.certificate, digest, time);
        ids.emplace_back("idSignedProperties");
    }
    NewSignature signature;
    throwIfMisnamed(map); // of what was read meanwhile
    std::size_t roomForGaps = CoverageAnswer::MOST_LISTED;
    signature.coverage = computeCoverage(plan.signedContents(), contents, map, roomForGaps);
    signature.unreachable = findUnreachable(contents, map);
    signature.dangling = findDangling(plan.signedContents(), map);
    const std::string document = composeSignedDocument(signer, method, digest, objects, ids);
    signature.part = addSignature(package, document, contents, map);
    signature.name = shortName(signature.part);
    return signature;
}

} // namespace opc::standard_signatures
