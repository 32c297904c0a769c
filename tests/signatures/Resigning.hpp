#pragma once

#include "signatures/DigestEngines.hpp"
#include "signatures/DigitalSignatureData.hpp"
#include "signatures/DigitalSignatureSerializer.hpp"
#include "signatures/RsaKeys.hpp"
#include "signatures/SignedBytes.hpp"
#include "support/PackageContent.hpp"

#include <bedrock/crypto/CryptoEngine.hpp>
#include <bedrock/crypto/DigestEngine.hpp>
#include <bedrock/crypto/RSASigner.hpp>
#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>

#include <stdexcept>
#include <string>

namespace opc::test {

/// Makes signature documents of another form hold, as the owner of the key could: signs with RSA of 1024 bits
/// and SHA-256.
class Resigning {
public:
    explicit Resigning(const Bytes& privateSigningKey) : privateKey(privateSigningKey) {}

    /// `document` with the digest and the signature value that its package object asks for.
    std::string sign(std::string document) const {
        std::u16string object = read(document)->m_objects.at(u"idPackageObject").XMLBytes;
        const std::u16string declaration = u"xmlns=\"http://www.w3.org/2000/09/xmldsig#\" ";
        if (const auto found = object.find(declaration); found != std::u16string::npos)
            object.erase(found, declaration.size());
        const auto digest = engine(*read(document))->computeDigest(model::toSignedBytes(object));
        setText(document, "<DigestValue>", base64(digest));

        const auto data = read(document);
        const auto value = model::createRsaSigner(*data->m_cryptoEngine, 1024, privateKey)
                               ->sign(model::toSignedBytes(data->m_content.signedInfoXML), engine(*data));
        setText(document, "<SignatureValue>", base64(value));
        return document;
    }

private:
    static std::string base64(const Bytes& bytes) {
        return toASCIIString(bedrock::crypto::utils::base64Encode(bytes));
    }

    static std::shared_ptr<bedrock::crypto::DigestEngine> engine(const model::DigitalSignatureData& data) {
        return model::createDigestEngine(*data.m_cryptoEngine, model::DigestMethod::SHA256);
    }

    /// Replaces what follows the first of a start tag up to the next tag.
    static void setText(std::string& document, const std::string& tag, const std::string& text) {
        const std::size_t found = document.find(tag);
        if (found == std::string::npos)
            throw std::logic_error("not in the document: " + tag);
        const std::size_t begin = found + tag.size();
        document.replace(begin, document.find('<', begin) - begin, text);
    }

    std::shared_ptr<model::DigitalSignatureData> read(const std::string& document) const {
        const Bytes bytes = toBytes(document);
        ByteArrayInAdaptor stream(bytes);
        auto data = std::make_shared<model::DigitalSignatureData>();
        serializer->readSignature(stream, *data);
        return data;
    }

    const Bytes& privateKey;
    std::unique_ptr<model::DigitalSignatureSerializer> serializer =
        std::make_unique<model::DigitalSignatureSerializer>();
};

} // namespace opc::test
