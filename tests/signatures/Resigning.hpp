#pragma once

#include "signatures/algorithms/DigestEngines.hpp"
#include "signatures/algorithms/RsaKeys.hpp"
#include "signatures/digests/SignedText.hpp"
#include "signatures/document/DigitalSignatureSerializer.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"
#include "support/PackageContent.hpp"
#include "support/Texts.hpp"

#include <bedrock/crypto/CryptoEngine.hpp>
#include <bedrock/crypto/DigestEngine.hpp>
#include <bedrock/crypto/RSASigner.hpp>
#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>

namespace opc::test {

/// A signature document in another form, with the digest and the signature value for its package object, as the owner
/// of the key could make them with SHA-256.
inline std::string resigned(std::string document, const Bytes& privateKey, std::size_t bits = 1024) {
    const auto read = [&document, serializer = std::make_unique<model::DigitalSignatureSerializer>()] {
        const Bytes bytes = toBytes(document);
        ByteArrayInAdaptor stream(bytes);
        model::DigitalSignatureData data;
        serializer->readSignature(stream, data);
        return data;
    };
    const auto setText = [&document](const std::string& tag, const Bytes& bytes) {
        const std::string text = toASCIIString(bedrock::crypto::utils::base64Encode(bytes));
        document = replaced(document, piece(document, tag, "</"), tag + text);
    };
    const model::DigitalSignatureData data = read();
    const auto sha256 = model::createDigestEngine(*data.m_cryptoEngine, model::DigestMethod::SHA256);
    std::u16string object = data.m_objects.at(u"idPackageObject").XMLBytes;
    const std::u16string declaration = u"xmlns=\"http://www.w3.org/2000/09/xmldsig#\" ";
    if (const auto found = object.find(declaration); found != std::u16string::npos)
        object.erase(found, declaration.size());
    setText("<DigestValue>", sha256->computeDigest(model::toSignedBytes(object)));
    setText("<SignatureValue>", model::createRsaSigner(*data.m_cryptoEngine, bits, privateKey)
                                    ->sign(model::toSignedBytes(read().m_content.signedInfoXML), sha256));
    return document;
}

} // namespace opc::test
