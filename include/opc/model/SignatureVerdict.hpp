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

/// By what somebody was found to have made a signature.
enum class SignerEvidence {
    None,        ///< nobody was: the signature doesn't hold, or its signer isn't accepted
    PublicKey,   ///< the key of the policy; whatever else the signature says of its signer was not checked
    Certificate, ///< a certificate that leads to a trusted one
    Fingerprint, ///< a certificate whose fingerprint the policy knows
};

/// What `DigitalSignatureManager::judge` found out about one signature. All texts are in English.
struct JudgedSignature {
    explicit JudgedSignature(const DigitalSignature& judged) : signature(judged) {}

    DigitalSignature signature;

    bool isChecked = false; ///< false if it can't be checked

    /// Whether it is as it was signed, by somebody whom the policy accepts and with algorithms that it accepts.
    bool holds = false;

    /// 0 if it holds; otherwise as docs/errors.md has it. 11 stands for weak algorithms of the signature, too.
    bedrock::codesigning_verifier::ErrorCode code = bedrock::codesigning_verifier::ErrorMap<-1>();

    std::string status; ///< what the code means, in a few words: "holds", "content changed"
    std::string reason; ///< why it doesn't hold, with the part, relationship or certificate; else empty

    SignerEvidence evidence = SignerEvidence::None;

    /// Whose it is, as far as that was checked: empty without a certificate, and with `None` and `PublicKey`.
    bedrock::certificates::X509Certificate signer;

    /// When it was made, as the signer claims: nobody else vouches for it. Not-a-date-time if nothing is
    /// claimed, or if the claim isn't protected since the signature value is wrong.
    boost::posix_time::ptime claimedTime;

    /// Whether the certificate is accepted for the claimed time and wouldn't be now, since it has expired, for
    /// instance: who got hold of its key could claim that time, too.
    bool restsOnClaimedTime = false;

    /// Each weak algorithm with its place: "RSA key of 1024 bits", "MD5 digest of /a.xml".
    std::vector<std::string> weaknesses;
};

/// Why the answer of a verdict isn't yes.
struct VerdictReason {
    enum class Kind {
        NoSignatures,       ///< there is none
        Unreadable,         ///< the signatures can't be read
        NotChecked,         ///< a signature can't be checked
        ForeignForm,        ///< the package has signatures of another form, which aren't read
        DoesNotHold,        ///< what was signed has changed, or it wasn't signed by that key
        SignerNotAccepted,  ///< the certificate isn't trusted, has expired, is revoked …
        WeakAlgorithm,      ///< a signature, a certificate or a revocation list is too weak
        NotCovered,         ///< full coverage is asked for, and no signature that holds covers this
        ContentTypeChanged, ///< full coverage is asked for, and the content type isn't as signed
        IgnoredItem, ///< only other programs read something: among signed relationships, or, if full coverage
                     ///< is asked for, anywhere
    };

    /// Whether it is only known that something can't be known.
    bool leavesOpen() const {
        return kind == Kind::Unreadable || kind == Kind::NotChecked || kind == Kind::ForeignForm;
    }

    Kind kind;
    std::u16string signature;                      ///< its name; empty if the reason is about the package
    bedrock::codesigning_verifier::ErrorCode code; ///< of the signature, or of what failed to read; else 0
    std::string text;                              ///< in English, with the signature's name
};

/// The answer to "may this package pass by its signatures?", with all that it rests on. A value.
class OPC_MODEL_EXPORT SignatureVerdict {
public:
    enum class Answer {
        Yes,       ///< there are signatures, and all that the policy asks for is so
        No,        ///< it is known not to be so
        CannotTell ///< a signature can't be read or checked
    };

    Answer getAnswer() const;
    bool isYes() const { return getAnswer() == Answer::Yes; }

    /// Empty exactly if the answer is yes. All reasons, not the first alone.
    const std::vector<VerdictReason>& getReasons() const { return reasons; }

    /// Each signature that was judged.
    const std::vector<JudgedSignature>& getSignatures() const { return signatures; }

    /// What the signatures that hold cover.
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
