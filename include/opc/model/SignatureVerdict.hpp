#pragma once

#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/codesigning_verifier/ErrorCode.hpp>
#include <opc/model/DigitalSignature.hpp>
#include <opc/model/Export.hpp>
#include <opc/model/PackageCoverage.hpp>

#include <boost/date_time/posix_time/ptime.hpp>

#include <string>
#include <vector>

namespace opc::model {

class SignaturePolicy;

/// How the signer of a signature was identified.
enum class SignerEvidence {
    None,        ///< not at all: the signature doesn't hold, or its signer isn't accepted
    PublicKey,   ///< by the key of the policy; other data about the signer wasn't checked
    Certificate, ///< by a certificate that leads to a trusted one
    Fingerprint, ///< by a certificate whose fingerprint the policy knows
};

/// The findings of `DigitalSignatureManager::judge` about one signature. All texts are in English.
struct JudgedSignature {
    explicit JudgedSignature(const DigitalSignature& signature) : signature(signature) {}

    DigitalSignature signature;

    bool isChecked = false; ///< false if it can't be checked

    /// Whether nothing has changed since it was signed, and the policy accepts its signer and its algorithms.
    bool holds = false;

    /// 0 if it holds; otherwise a code of docs/errors.md. 11 also means weak algorithms of the signature itself.
    bedrock::codesigning_verifier::ErrorCode code = bedrock::codesigning_verifier::ErrorMap<-1>();

    std::string status; ///< the meaning of the code in a few words: "holds", "content changed"
    std::string
        reason; ///< why it doesn't hold, with the part, relationship or certificate; empty if it holds

    SignerEvidence evidence = SignerEvidence::None;

    /// The certificate of the signer, if it was checked: empty without a certificate, and for `None` and `PublicKey`.
    bedrock::certificates::X509Certificate signer;

    /// The time of signing, which only the signer claims. Not-a-date-time without a claim, and if the signature value is
    /// wrong, because then nothing protects the claim.
    boost::posix_time::ptime claimedTime;

    /// Whether the certificate is valid at the claimed time and isn't valid now, for example because it has expired.
    /// Someone else who got its key could claim that time too.
    bool restsOnClaimedTime = false;

    /// Each weak algorithm with its place: "RSA key of 1024 bits", "MD5 digest of /a.xml".
    std::vector<std::string> weaknesses;
};

/// Why the answer of a verdict isn't yes.
struct VerdictReason {
    enum class Kind {
        NoSignatures,       ///< the package has no signatures
        Unreadable,         ///< the signatures can't be read
        NotChecked,         ///< a signature can't be checked
        ForeignForm,        ///< the package has signatures in another form, which aren't read
        DoesNotHold,        ///< something signed has changed, or it wasn't signed by that key
        SignerNotAccepted,  ///< the certificate isn't trusted, has expired, or was revoked …
        WeakAlgorithm,      ///< a signature, a certificate or a revocation list is too weak
        NotCovered,         ///< full coverage is required, and no signature that holds covers this
        ContentTypeChanged, ///< full coverage is required, and the content type isn't as signed
        IgnoredItem,        ///< the library ignores something that other programs may read: among signed
                            ///< relationships or, if full coverage is required, anywhere
    };

    /// Whether the reason only says that something couldn't be checked.
    bool leavesOpen() const {
        return kind == Kind::Unreadable || kind == Kind::NotChecked || kind == Kind::ForeignForm;
    }

    Kind kind;
    std::u16string signature;                      ///< its name; empty if the reason is about the package
    bedrock::codesigning_verifier::ErrorCode code; ///< of the signature, or of the failure to read; else 0
    std::string text;                              ///< in English, with the signature's name
};

/// The answer to "may this package pass by its signatures?", with its reasons. A value type.
class OPC_MODEL_EXPORT SignatureVerdict {
public:
    enum class Answer {
        Yes,       ///< the package has signatures, and everything that the policy requires is true
        No,        ///< something that the policy requires is false
        CannotTell ///< a signature can't be read or checked
    };

    Answer getAnswer() const;
    bool isYes() const { return getAnswer() == Answer::Yes; }

    /// All reasons why the answer isn't yes; empty if it is yes.
    const std::vector<VerdictReason>& getReasons() const { return reasons; }

    /// Each signature that was judged.
    const std::vector<JudgedSignature>& getSignatures() const { return signatures; }

    /// The coverage of the signatures that hold.
    const PackageCoverage& getCoverage() const { return coverage; }

private:
    friend class DigitalSignatureManager;

    SignatureVerdict() = default;

    void addReason(VerdictReason::Kind kind, std::string text);
    void addSignature(JudgedSignature signature);
    void refuseIgnored(bool isAllRefused);
    void requireFullCoverage();

    std::vector<VerdictReason> reasons;
    std::vector<JudgedSignature> signatures;
    PackageCoverage coverage;
};

} // namespace opc::model
