#include "verification/CryptographyCheck.hpp"

#include "canonical/CanonicalXml.hpp"
#include "crypto/Digest.hpp"
#include "reason/Refusal.hpp"
#include "verification/SignerKey.hpp"

#include <opc/model/Errors.hpp>

#include <algorithm>
#include <utility>

namespace opc::standard_signatures {

namespace {

using bedrock::crypto::PublicKeyKind;
using bedrock::crypto::SignatureScheme;
using bedrock::crypto::SignatureValueStatus;
using Code = Reason::Code;
using Status = CryptographyAnswer::Status;

constexpr std::size_t STRONG_RSA_BITS = 2048;

class Check {
public:
    Check(const SignatureDocument& document, PackageContents& package, const VerificationPolicy& policy,
          WorkLeft& work)
        : document(document), package(package), policy(policy), work(work) {}

    CheckedSignature run(const std::vector<bedrock::certificates::X509Certificate>& certificates) {
        result.answer.method = document.method->name;
        result.answer.referenceCount = document.elements.size() + document.manifest.size();
        result.answer.references.reserve(std::min(result.answer.referenceCount, work.listedReferences));
        checkValue(certificates);
        for (const SignedElement& one : document.elements)
            check(one.reference.uri, one.reference.digest, [&] { checkElement(one); });
        const bool isWholeBroken = isBroken;
        for (const PartReference& one : document.manifest)
            check(one.uri, one.digest, [&] { checkPart(one); });
        if (isWholeBroken) // nothing is protected
            result.contents = {};
        addWeakDigests();
        result.answer.status = isBroken ? Status::Broken : isWeak ? Status::Weak : Status::Valid;
        return std::move(result);
    }

private:
    void addReason(Code code, const std::string& text) { result.answer.reasons.push_back({code, "", text}); }

    void addWeakness(const std::string& text) {
        isWeak = true;
        addReason(Code::WeakAlgorithm, text);
    }

    void addBreak(Code code, const std::string& text) {
        isBroken = true;
        addReason(code, text);
    }

    template <typename Action>
    void check(const std::string& uri, const StatedDigest& digest, const Action& action) {
        CheckedReference checked{uri, digest.method->name, {}};
        weakDigests += digest.method->isWeak ? 1 : 0;
        try {
            action();
        } catch (const Refusal& refusal) {
            checked.wrong = refusal.reason();
            checked.wrong->place = uri;
            isBroken = true;
        }
        list(std::move(checked));
    }

    void list(CheckedReference checked) {
        constexpr std::size_t FOR_WRONG_ONES = CryptographyAnswer::MOST_LISTED / 2;
        if (work.listedReferences <= (checked.wrong ? 0 : FOR_WRONG_ONES))
            return;
        --work.listedReferences;
        result.answer.references.push_back(std::move(checked));
    }

    std::string counted(std::string octets) {
        if (octets.size() > work.canonicalBytes)
            throw Refusal(Code::BeyondLimit, "", "The signatures of the package need too much digesting");
        work.canonicalBytes -= octets.size();
        return octets;
    }

    std::string canonical(const XmlTreeNode& element, const CanonicalForm& form) {
        try {
            return canonicalize(element, form, work.canonicalForms);
        } catch (const model::InvalidXMLDocument& e) {
            throw Refusal(Code::Malformed, "", e.what());
        }
    }

    void checkValue(const std::vector<bedrock::certificates::X509Certificate>& certificates) {
        try {
            const SignerKey key =
                findSignerKey(document, certificates, policy.trust ? &*policy.trust : nullptr,
                              canonical(*document.signedInfo, document.form), work.keys, package.digester());
            result.key = key.key;
            result.certificate = key.certificate;
            result.answer.keyBits = key.kind.bits;
            judgeStatus(key.status);
            judgeStrength(key.kind);
        } catch (const Refusal& refusal) {
            addBreak(refusal.reason().code, refusal.reason().text);
        }
    }

    void judgeStatus(SignatureValueStatus status) {
        if (status == SignatureValueStatus::Wrong)
            addBreak(Code::WrongSignatureValue,
                     "The signature value wasn't made with this key, or what it signs has changed");
        if (status != SignatureValueStatus::RightWithoutNull)
            return;
        const std::string text = "The signature value lacks the NULL behind the name of its digest";
        if (policy.acceptMissingNull)
            addReason(Code::NullNotRequired, text);
        else
            addBreak(Code::MissingNull, text);
    }

    void judgeStrength(const PublicKeyKind& kind) {
        if (document.method->isWeak)
            addWeakness(std::string("The signature is ") + document.method->name);
        if (kind.algorithm != PublicKeyKind::Algorithm::EC && kind.bits < STRONG_RSA_BITS)
            addWeakness("The RSA key has " + std::to_string(kind.bits) + " bits");
    }

    void addWeakDigests() {
        if (weakDigests != 0)
            addWeakness(std::to_string(weakDigests) + " of " + std::to_string(result.answer.referenceCount) +
                        " references have a digest with SHA-1");
    }

    static void compare(const StatedDigest& stated, const std::vector<unsigned char>& computed) {
        if (computed != stated.value)
            throw Refusal(Code::WrongDigest, "", "It has changed since it was signed");
    }

    void checkElement(const SignedElement& one) {
        compare(one.reference.digest, package.digester().of(canonical(*one.element, one.reference.form),
                                                            *one.reference.digest.method));
    }

    void checkPart(const PartReference& reference) {
        const StoredPart& part = findPart(reference);
        checkContentType(part, reference);
        if (reference.selects) {
            checkRelationships(part, reference);
        } else {
            compare(reference.digest, reference.form ? digestCanonical(part, reference)
                                                     : package.digest(part, *reference.digest.method));
            result.contents.parts.insert(&part);
        }
        if (reference.contentType)
            result.contents.contentTypes.insert(&part);
        if (part.name != reference.partName)
            result.contents.renamed.push_back(&part);
    }

    const StoredPart& findPart(const PartReference& reference) {
        const StoredPart* const part = package.find(reference.partName);
        if (part == nullptr)
            throw Refusal(Code::PartMissing, "", "The part isn't in the package");
        if (part->isAmbiguous)
            throw Refusal(Code::BadReference, "", "There is more than one part with this name");
        if (!seen.insert(part).second)
            throw Refusal(Code::BadReference, "", "The manifest names the part twice");
        return *part;
    }

    void checkContentType(const StoredPart& part, const PartReference& reference) const {
        if (!reference.contentType)
            return;
        if (const auto& failure = package.contentTypesFailure())
            throw Refusal(*failure);
        if (part.contentType != reference.contentType)
            throw Refusal(Code::ContentTypeChanged, "",
                          "Its content type is " + part.contentType.value_or("unknown") +
                              ", and it was signed as " + *reference.contentType);
    }

    /// The digest of a whole relationships part in canonical form, as some programs sign it.
    std::vector<unsigned char> digestCanonical(const StoredPart& part, const PartReference& reference) {
        package.relationships(part); // so that nothing else is in it
        const auto stream = package.open(part);
        const auto tree = work.read<XmlTree>(*stream);
        return package.digester().of(canonical(tree.root(), *reference.form), *reference.digest.method);
    }

    void checkRelationships(const StoredPart& part, const PartReference& reference) {
        if (!part.source)
            throw Refusal(Code::BadReference, "",
                          "The relationships transform is about another kind of part");
        const auto selected = select(package.relationships(part), *reference.selects);
        if (selected.size() > work.relationships)
            throw Refusal(Code::BeyondLimit, "", "The signatures of the package sign too many relationships");
        work.relationships -= selected.size();
        compare(reference.digest,
                package.digester().of(counted(canonicalize(selected)), *reference.digest.method));
        result.contents.relationships.insert(selected.begin(), selected.end());
    }

    const SignatureDocument& document;
    PackageContents& package;
    const VerificationPolicy& policy;
    WorkLeft& work;
    CheckedSignature result;
    std::unordered_set<const StoredPart*> seen;
    std::size_t weakDigests = 0;
    bool isBroken = false;
    bool isWeak = false;
};

} // namespace

CheckedSignature checkCryptography(const SignatureDocument& document, PackageContents& package,
                                   const std::vector<bedrock::certificates::X509Certificate>& certificates,
                                   const VerificationPolicy& policy, WorkLeft& work) {
    return Check(document, package, policy, work).run(certificates);
}

} // namespace opc::standard_signatures
