#pragma once

#include <bedrock/crypto/CryptoEngine.hpp>
#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <support/OpenSslCommand.hpp>
#include <support/TestCertificates.hpp>

#include <gtest/gtest.h>
#include <openssl/err.h>

#include <memory>
#include <string>
#include <vector>

namespace bedrock::test {

using opc::test::CertificateRecipe;
using opc::test::Extensions;
using opc::test::Identity;
using opc::test::keysOf;
using opc::test::makeIssuer;
using opc::test::makePublicKey;
using opc::test::makeRevocationList;
using opc::test::makeSigner;
using opc::test::OpenSslCommand;

using Bytes = std::vector<unsigned char>;

inline Bytes bytesOf(const std::string& text) {
    return Bytes(text.begin(), text.end());
}

inline std::string hex(const Bytes& bytes) {
    std::string text;
    for (const unsigned char byte : bytes) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

/// The encoded form of a private key with these numbers in hexadecimal: n, e, d, p, q, dp, dq and qi.
inline Bytes encode(const OpenSslCommand& openssl, const std::vector<std::string>& numbers) {
    std::string text = "asn1=SEQUENCE:key\n[key]\nversion=INTEGER:0\n";
    for (std::size_t index = 0; index < numbers.size(); ++index)
        text += std::string("n") + std::to_string(index) + "=INTEGER:0x" + numbers[index] + "\n";
    openssl.write("key.cnf", bytesOf(text));
    openssl.run("asn1parse -genconf key.cnf -noout -out encoded");
    return openssl.read("encoded");
}

inline crypto::CryptoEngine makeEngine() {
    return crypto::CryptoEngine(std::make_shared<crypto::cryptopp::CryptoProvider>());
}

inline std::shared_ptr<crypto::RSAPrivateKey> privateKey(std::size_t bits, const Bytes& encoded) {
    return crypto::cryptopp::CryptoProvider().createRSAPrivateKey(bits, encoded);
}

inline std::shared_ptr<crypto::RSAPublicKey> publicKey(std::size_t bits, const Bytes& encoded) {
    return crypto::cryptopp::CryptoProvider().createRSAPublicKey(bits, encoded);
}

/// Whether `action` throws `E` with a text, and leaves nothing in OpenSSL's error queue.
template <typename E, typename Action>
testing::AssertionResult fails(Action&& action) {
    try {
        action();
    } catch (const E& failure) {
        if (std::string(failure.what()).empty())
            return testing::AssertionFailure() << "no text";
        if (ERR_peek_error() != 0)
            return testing::AssertionFailure() << "errors are left behind";
        return testing::AssertionSuccess() << failure.what();
    }
    return testing::AssertionFailure() << "raised nothing";
}

} // namespace bedrock::test
