#pragma once

#include "canonical/XmlTree.hpp"
#include "document/References.hpp"

#include <opc/core/InputStream.hpp>

#include <optional>
#include <string>
#include <vector>

namespace opc::standard_signatures {

/// A time stamp over the signature value. The signature doesn't protect it.
struct StatedTimeStamp {
    std::vector<unsigned char> token;

    /// In what form it is about the element SignatureValue (XAdES); without one it is about the octets of the value.
    std::optional<CanonicalForm> form;
};

/// The keys and certificates that a signature names. It doesn't protect them.
struct StatedKeys {
    std::vector<std::vector<unsigned char>> certificates; ///< in DER
    std::vector<std::vector<unsigned char>> keys;         ///< SubjectPublicKeyInfo
};

/// An element that SignedInfo refers to.
struct SignedElement {
    ElementReference reference;
    const XmlTreeNode* element;
};

/// The document of a signature part, read from the elements that SignedInfo refers to. Those alone are digested, and
/// nothing is read from elsewhere, but for keys and time stamps.
///
/// Nothing here says whether the signature holds.
struct SignatureDocument {
    XmlTree tree;

    const XmlTreeNode* signedInfo = nullptr;
    const XmlTreeNode* signatureValue = nullptr;
    CanonicalForm form; ///< of SignedInfo
    const SignatureMethod* method = nullptr;
    std::vector<unsigned char> value;
    std::vector<SignedElement> elements;

    bool hasUnsignedContent = false; ///< in which a program could find content

    std::vector<PartReference> manifest;
    std::string claimedTime; ///< as it stands; empty if there is none

    /// Digests of the certificates that the signer names, of which one must be his; empty if he names none.
    std::vector<StatedDigest> signerCertificates;

    StatedKeys keys;

    /// Certificates in DER through which a chain can lead. The signature doesn't protect them.
    std::vector<std::vector<unsigned char>> chainCertificates;
    std::vector<StatedTimeStamp> timeStamps;

    static constexpr std::size_t MOST_ELEMENTS = 64; ///< each can be the whole document
    static constexpr std::size_t MOST_REFERENCES = 65536;
    static constexpr std::size_t MOST_TIME_STAMPS = 16;
    static constexpr std::size_t MOST_CHAIN_CERTIFICATES = 20;

    /// @param stream  open, at its first byte
    /// @throws Refusal
    /// @throws model::InvalidXMLDocument
    /// @throws the exceptions of the stream
    static SignatureDocument read(InputStream& stream, const XmlTreeLimits& limits = {});

    explicit SignatureDocument(XmlTree tree) : tree(std::move(tree)) {}
};

} // namespace opc::standard_signatures
