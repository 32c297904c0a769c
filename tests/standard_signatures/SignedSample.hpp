#pragma once

#include "support/PackageContent.hpp"
#include "support/TestCertificates.hpp"

#include <opc/standard_signatures/Verification.hpp>

#include <functional>
#include <string>
#include <vector>

namespace opc::test {

/// The parts of a signature document, which a test changes before or after they are digested.
struct SignatureRecipe {
    const Identity* signer = nullptr; ///< null: a signer with an RSA key of 2048 bits
    std::string method = "http://www.w3.org/2001/04/xmldsig-more#rsa-sha256";
    std::string digest = "http://www.w3.org/2001/04/xmlenc#sha256";
    std::string canonicalization = "http://www.w3.org/TR/2001/REC-xml-c14n-20010315";
    std::string keyInfo; ///< in place of the certificate, if it isn't empty
    bool hasXades = true;
    bool omitsNull = false;              ///< makes an RSA value without the NULL in its DigestInfo
    std::vector<std::string> alsoSigned; ///< the Ids of further elements
    std::string moreReferences;          ///< further references of SignedInfo, with right or wrong digests
    std::string moreObjects;

    using Change = std::function<void(std::string&)>;
    Change changeManifest;   ///< before the objects are digested
    Change changeDocument;   ///< before the digests of the objects are computed
    Change changeSignedInfo; ///< before it is signed
    Change changeAtLast;     ///< after it was signed
};

/// A small document of an office program in memory: a main part with styles, a picture, core properties, and signatures.
class SignedSample {
public:
    static constexpr char16_t SIGNATURE[] = u"/_xmlsignatures/sig1.xml";

    SignedSample();

    /// The manifest's reference to a part by its octets, with its digest.
    std::string referenceTo(const std::u16string& part, const std::string& contentType,
                            const std::string& digest = {}) const;

    /// The reference to relationships.
    std::string referenceTo(const std::u16string& part, const std::vector<std::string>& ids,
                            const std::string& digest = {}) const;

    /// The reference to a whole relationships part in canonical form.
    std::string canonicalReferenceTo(const std::u16string& part) const;

    /// Signs everything but the properties, as signing programs do, and adds the signature.
    void sign(const SignatureRecipe& recipe = {}, const std::u16string& part = SIGNATURE);

    void replace(const std::u16string& part, const std::string& from, const std::string& to);
    void replaceContentTypes(const std::string& from, const std::string& to);

    static const Identity& usualSigner();
    static standard_signatures::VerificationPolicy trusting(const Identity& signer = usualSigner());

    standard_signatures::PackageVerification
    verify(const standard_signatures::VerificationPolicy& policy = trusting());

    physical::MemoryPackage store;
};

/// One that the model reads as it is.
struct PlainSample : SignedSample {
    PlainSample() { replace(u"/word/_rels/document.xml.rels", "\xC3\xA4.png", "%C3%A4.png"); }
};

/// All reasons why a package isn't a yes, one a line.
std::string reasonsOf(const standard_signatures::PackageVerification& result);

/// The Base64 text of bytes.
std::string base64(const std::vector<unsigned char>& bytes);

/// Puts one text in the place of another.
SignatureRecipe::Change replacing(const std::string& from, const std::string& to);

} // namespace opc::test
