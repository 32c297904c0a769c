#pragma once

#include <string>

namespace opc::standard_signatures {

/// Why an answer about a signature isn't the best one. Texts are in English and in UTF-8.
struct Reason {
    enum class Code {
        Malformed,            ///< the signature part isn't what the standard describes
        BeyondLimit,          ///< it is built to exhaust its reader
        AmbiguousId,          ///< two elements have the same Id
        NotAPackageSignature, ///< it signs no manifest of parts, or more than one
        BadReference,         ///< a reference leads to something that it may not lead to, or to nothing
        AlgorithmNotAccepted, ///< an algorithm or transform that is never accepted
        NoKey,                ///< it names no key that can be read
        KeyMismatch,          ///< two places name different keys, or the key isn't one for the method
        CertificateMismatch,  ///< the certificate isn't the one that the signer names
        WrongSignatureValue,  ///< it wasn't made with this key, or what it signs has changed
        WrongDigest,          ///< what a reference signs has changed
        PartMissing,          ///< a signed part isn't in the package
        PartUnreadable,       ///< the content of a signed part is damaged
        ContentTypeChanged,   ///< a part has another content type than when it was signed
        RelationshipsRefused, ///< a relationships part can be understood in more than one way
        WeakAlgorithm,        ///< SHA-1, or an RSA key below 2048 bits
        MissingNull,          ///< the value lacks a NULL that others require
        NullNotRequired,      ///< the same, and the policy accepts it: this breaks nothing
    };

    Code code;
    std::string place; ///< the part, or the reference; empty if it is about the whole
    std::string text;
};

} // namespace opc::standard_signatures
