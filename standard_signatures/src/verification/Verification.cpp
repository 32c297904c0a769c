#include <opc/standard_signatures/CoverageTable.hpp>
#include <opc/standard_signatures/Verification.hpp>

#include "content/PackageContents.hpp"
#include "coverage/PackageMap.hpp"
#include "coverage/SignedContents.hpp"
#include "names/SignatureParts.hpp"
#include "reason/Refusal.hpp"
#include "trust/TrustCheck.hpp"
#include "verification/CryptographyCheck.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <functional>
#include <utility>

namespace opc::standard_signatures {

namespace {

using bedrock::certificates::X509Certificate;
using Bytes = std::vector<unsigned char>;
using Code = Reason::Code;

constexpr std::size_t MOST_SIGNATURES = 100;
constexpr std::size_t MOST_CERTIFICATES = 20; ///< of a signature
constexpr std::size_t MOST_CERTIFICATE_BYTES = 65536;

std::string nameOfSignature(const std::string& partName) {
    const std::string segment = partName.substr(partName.rfind('/') + 1);
    return segment.substr(0, segment.rfind('.'));
}

std::string messageOf(const Exception& failure) {
    const std::string details = failure.details();
    return details.empty() ? failure.what() : failure.what() + (" (" + details + ")");
}

/// Adds a certificate if it can be read. Everybody can add others to a signature.
void addCertificate(std::vector<X509Certificate>& all, const Bytes& der) {
    try {
        X509Certificate certificate(der);
        if (certificate.getAsByteArray() == der) // and not a text that has one somewhere
            all.push_back(std::move(certificate));
    } catch (const bedrock::certificates::CertificateException&) { // as if it weren't there
    }
}

Bytes readAll(InputStream& stream) {
    Bytes all;
    while (!stream.isDone() && all.size() <= MOST_CERTIFICATE_BYTES) {
        const std::size_t size = all.size();
        all.resize(size + 4096);
        all.resize(size + static_cast<std::size_t>(stream.read(all.data() + size, 4096)));
    }
    if (all.size() > MOST_CERTIFICATE_BYTES)
        throw Refusal(Code::BeyondLimit, "", "A certificate part is too long");
    return all;
}

class Verifier {
public:
    Verifier(interfaces::IPhysicalPackage& store, const VerificationPolicy& policy)
        : policy(policy), contents(store), map(contents) {}

    /// @param keep  gets what each signature protects, if it is given: nothing of a broken one
    PackageVerification run(const std::function<void(SignedContents)>& keep = {}) {
        PackageVerification result;
        addProblems(result.problems);
        for (const StoredPart* const part : map.signatures()) {
            if (result.signatures.size() == MOST_SIGNATURES) {
                result.problems.push_back(
                    {Code::BeyondLimit, part->name,
                     "There are more than " + std::to_string(MOST_SIGNATURES) + " signatures"});
                break;
            }
            SignedContents ofSignature;
            result.signatures.push_back(verify(*part, ofSignature));
            if (keep)
                keep(result.signatures.back().cryptography.status == CryptographyAnswer::Status::Broken
                         ? SignedContents()
                         : std::move(ofSignature));
        }
        return result;
    }

    /// @param signedContents  of each signature
    void fill(CoverageTable& table, const std::vector<SignedContents>& signedContents) const {
        const auto findSignatures = [&signedContents](const auto& covers) {
            std::vector<std::size_t> found;
            for (std::size_t i = 0; i < signedContents.size(); ++i)
                if (covers(signedContents[i]))
                    found.push_back(i);
            return found;
        };
        for (const StoredPart& part : contents.parts())
            if (!part.source)
                table.parts.push_back(
                    {part.name, {}, {}, standingOf(part), findSignatures([&part](const SignedContents& one) {
                         return one.parts.count(&part) != 0;
                     })});
        for (const MappedRelationship& one : map.relationships())
            table.relationships.push_back({*one.document->source, one.values->id, one.values->type,
                                           standingOf(one.role),
                                           findSignatures([&one](const SignedContents& contentsOfOne) {
                                               return contentsOfOne.has(one);
                                           })});
    }

private:
    using Standing = CoverageTable::Standing;

    static Standing standingOf(RelationshipRole role) {
        return role == RelationshipRole::Content           ? Standing::Content
               : role == RelationshipRole::LeftOutByCustom ? Standing::LeftOutByCustom
                                                           : Standing::OfSignatures;
    }

    Standing standingOf(const StoredPart& part) const {
        return !map.isExempt(part)        ? Standing::Content
               : map.isOfSignatures(part) ? Standing::OfSignatures
                                          : Standing::LeftOutByCustom;
    }

    void addProblems(std::vector<Reason>& problems) const {
        if (const auto& failure = contents.contentTypesFailure())
            problems.push_back(*failure);
        const auto& signatures = map.signatures();
        for (const StoredPart& part : contents.parts())
            if (part.contentType == SIGNATURE_CONTENT_TYPE &&
                std::find(signatures.begin(), signatures.end(), &part) == signatures.end())
                problems.push_back(
                    {Code::NotAPackageSignature, part.name,
                     "It has the content type of a signature, and no relationship leads to it"});
    }

    /// @param ofSignature  gets what it signs
    VerifiedSignature verify(const StoredPart& part, SignedContents& ofSignature) {
        VerifiedSignature signature;
        signature.part = part.name;
        signature.name = nameOfSignature(part.name);
        try {
            check(part, signature, ofSignature);
        } catch (const Refusal& refusal) {
            addBreak(signature, refusal.reason().code, refusal.reason().text);
        } catch (const model::InvalidXMLDocument& failure) {
            addBreak(signature, Code::Malformed, messageOf(failure));
        } catch (const Exception& failure) {
            addBreak(signature, Code::PartUnreadable, messageOf(failure));
        }
        const auto status = signature.cryptography.status;
        if (status != CryptographyAnswer::Status::Broken || !ofSignature.isNothing())
            signature.coverage = computeCoverage(ofSignature, contents, map, roomForGaps);
        const bool isGood = status == CryptographyAnswer::Status::Valid ||
                            (status == CryptographyAnswer::Status::Weak && policy.acceptWeak);
        signature.isYes = isGood && signature.coverage.isComplete() &&
                          signature.trust.status == TrustAnswer::Status::Trusted;
        return signature;
    }

    void check(const StoredPart& part, VerifiedSignature& signature, SignedContents& ofSignature) {
        if (part.isAmbiguous)
            throw Refusal(Code::Malformed, "", "There is more than one part with this name");
        const auto document = work.read<SignatureDocument>(*contents.open(part));
        contents.noteFit(part);
        std::vector<X509Certificate> certificates = readCertificates(part, document);
        CheckedSignature checked = checkCryptography(document, contents, certificates, policy, work);
        signature.cryptography = std::move(checked.answer);
        ofSignature = std::move(checked.contents);
        ofSignature.withUnsignedObject = document.hasUnsignedContent ? &part : nullptr;
        if (signature.cryptography.status == CryptographyAnswer::Status::Broken) {
            signature.trust.signer = checked.certificate;
            signature.trust.reason = "The signature is broken";
            return;
        }
        signature.claimedTime = document.claimedTime;
        for (const Bytes& der : document.chainCertificates)
            addCertificate(certificates, der);
        signature.trust = checkTrust(document, checked.key, checked.certificate, certificates, policy, work);
    }

    std::vector<X509Certificate> readCertificates(const StoredPart& part, const SignatureDocument& document) {
        std::vector<X509Certificate> certificates;
        for (const Bytes& der : document.keys.certificates)
            addCertificate(certificates, der);
        const std::vector<const StoredPart*> parts = map.certificatesOf(part);
        if (document.keys.certificates.size() + parts.size() > MOST_CERTIFICATES)
            throw Refusal(Code::BeyondLimit, "", "The signature has too many certificates");
        for (const StoredPart* const one : parts)
            addCertificate(certificates, readAll(*contents.open(*one)));
        if (certificates.empty() && !(document.keys.certificates.empty() && parts.empty()))
            throw Refusal(Code::NoKey, "", "No certificate of the signature can be read");
        return certificates;
    }

    static void addBreak(VerifiedSignature& signature, Code code, const std::string& text) {
        signature.cryptography.status = CryptographyAnswer::Status::Broken;
        signature.cryptography.reasons.push_back({code, signature.part, text});
        signature.trust.reason = "The signature is broken";
    }

    const VerificationPolicy& policy;
    PackageContents contents;
    PackageMap map;
    WorkLeft work;
    std::size_t roomForGaps = CoverageAnswer::MOST_LISTED;
};

} // namespace

bool PackageVerification::isYes() const {
    return !signatures.empty() && problems.empty() &&
           std::all_of(signatures.begin(), signatures.end(),
                       [](const VerifiedSignature& one) { return one.isYes; });
}

PackageVerification verify(interfaces::IPhysicalPackage& store, const VerificationPolicy& policy) {
    return Verifier(store, policy).run();
}

CoverageTable tabulateCoverage(interfaces::IPhysicalPackage& store, const VerificationPolicy& policy) {
    Verifier verifier(store, policy);
    std::vector<SignedContents> signedContents;
    const auto keep = [&signedContents](SignedContents one) { signedContents.push_back(std::move(one)); };
    CoverageTable table{verifier.run(keep), {}, {}};
    verifier.fill(table, signedContents);
    return table;
}

bool hasSignatures(interfaces::IPhysicalPackage& store) {
    PackageContents contents(store);
    const PackageMap map(contents);
    const auto& parts = contents.parts();
    return map.hasOrigin() || !map.signatures().empty() ||
           std::any_of(parts.begin(), parts.end(),
                       [](const StoredPart& part) { return part.contentType == SIGNATURE_CONTENT_TYPE; });
}

std::vector<std::string> listSignatures(interfaces::IPhysicalPackage& store) {
    PackageContents contents(store);
    const PackageMap map(contents);
    std::vector<std::string> names;
    for (const StoredPart* const part : map.signatures())
        names.push_back(part->name);
    return names;
}

} // namespace opc::standard_signatures
