#pragma once

#include <opc/core/Exception.hpp>
#include <opc/standard_signatures/Coverage.hpp>
#include <opc/standard_signatures/Export.hpp>

#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/crypto/DigestEngine.hpp>
#include <bedrock/crypto/SigningKey.hpp>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace opc::interfaces {
class IPhysicalPackage;
}

namespace opc::model {
class Package;
}

namespace opc::standard_signatures {

/// A package can't be signed, or a signature can't be removed. `what()` says why.
class OPC_STANDARD_SIGNATURES_EXPORT SigningRefused : public Exception {
public:
    explicit SigningRefused(const std::string& message) : Exception(message) {}
    SigningRefused(const SigningRefused&) = default;
    SigningRefused(SigningRefused&&) = default;
    ~SigningRefused() override;
};

/// Who signs.
struct Signer {
    bedrock::crypto::SigningKey key;

    /// The certificate of the key. Without it the signature has the public key alone, and says nothing about its owner.
    bedrock::certificates::X509Certificate certificate;

    /// Further certificates for the signature, which lead to a root.
    std::vector<bedrock::certificates::X509Certificate> chain;
};

/// What is signed, and how.
struct SigningOptions {
    /// The digest of each reference and of the signature value: SHA-256, SHA-384 or SHA-512.
    bedrock::crypto::DigestAlgorithm digest = bedrock::crypto::DigestAlgorithm::SHA256;

    /// Whether an RSA key of 1024 to 2047 bits may sign.
    bool acceptWeak = false;

    /// Whether properties and thumbnail are signed too, which signing programs leave out by custom, so that nobody can add
    /// some either. Ignored if parts or relationships are chosen.
    bool signsAll = false;

    /// A relationship, by the name of its source ("/" for the package) and its ID.
    struct RelationshipChoice {
        std::string source;
        std::string id;
    };

    /// What is signed; without both everything, except what is left out by custom, and the signatures.
    /// @{
    std::vector<std::string> parts;
    std::vector<RelationshipChoice> relationships;
    /// @}

    /// Why the document is signed; office programs show it.
    std::string comments;

    /// The time of signing that the signature claims; without it, now.
    std::optional<std::chrono::system_clock::time_point> time;
};

/// A signature that was made.
struct NewSignature {
    std::string part; ///< the name of its part
    std::string name; ///< the last segment of that without its extension, such as sig1

    /// What the signature protects, and what it doesn't.
    CoverageAnswer coverage;

    /// Parts to which no relationship leads from the package, so that no program shows them. A relationship that is added
    /// after signing can bring their content into the document: find out why they are there before you sign.
    std::vector<std::string> unreachable;

    /// Signed relationships to parts that aren't there, as `/word/document.xml#rId5`. A part that is added after signing can
    /// come in their place: find out why they are there before you sign.
    std::vector<std::string> dangling;
};

/// Signs a package in the standard's profile (ECMA-376 Part 2, digital signatures), with XAdES-BES (ETSI EN 319 132-1) if
/// there is a certificate. Close the package to save the signature. If anything is thrown, abandon the package.
///
/// Content is read as it lies in the store, as a stream; signatures that are there stay as they are, and go on to hold.
///
/// @param package  open for reading and writing, without changes that aren't saved: they wouldn't be signed, and saving them
///                 would break the signature
/// @param store    what holds the package. Contents are read from it as they lie there: the model may be open over a store
///                 that mends what it reads, but that one doesn't belong here
/// @throws SigningRefused  something that is to be signed isn't there or can be understood in two ways, the certificate
///                         isn't that of the key, the key is too weak, or another signature wouldn't hold any more
/// @throws bedrock::crypto::utils::InvalidKey  the key can't be used
/// @throws model::InvalidRelationshipContent, model::InvalidContentTypeStream  the package has entries that weren't read and
///                         would be lost
/// @throws opc::Exception  the store fails
OPC_STANDARD_SIGNATURES_EXPORT NewSignature sign(model::Package& package, interfaces::IPhysicalPackage& store,
                                                 const Signer& signer, const SigningOptions& options = {});

/// Removes signatures with the relationships that lead to them, their certificate parts unless others use those, and the
/// origin of signatures with the last one. Signatures needn't be readable. A part stays if it isn't what the relationships say,
/// or if content leads to it. Close the package to save that. If anything is thrown, abandon the package.
///
/// @param package, store  as for `sign`
/// @param parts    the names of the parts of the signatures
/// @throws SigningRefused  there is no such signature, or one that stays signs the relationships that lead to these
/// @throws model::InvalidRelationshipContent, model::InvalidContentTypeStream  as `sign`
/// @throws opc::Exception  the store fails
OPC_STANDARD_SIGNATURES_EXPORT void removeSignatures(model::Package& package,
                                                     interfaces::IPhysicalPackage& store,
                                                     const std::vector<std::string>& parts);

/// The same for one signature.
OPC_STANDARD_SIGNATURES_EXPORT void
removeSignature(model::Package& package, interfaces::IPhysicalPackage& store, const std::string& part);

} // namespace opc::standard_signatures
