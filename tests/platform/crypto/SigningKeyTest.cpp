#include "CryptoSupport.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/certificates/KeyBundle.hpp>
#include <bedrock/certificates/SelfSignedCertificate.hpp>
#include <bedrock/crypto/SignatureValue.hpp>
#include <bedrock/crypto/SigningKey.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>

namespace {

using namespace bedrock::certificates;
using namespace bedrock::crypto;
using namespace bedrock::test;

/// Whether it signs by the scheme of its kind, and what it signs holds by its public half.
bool signs(const SigningKey& key) {
    const bool isEC = describePublicKey(key.getPublicKey()).algorithm == PublicKeyKind::Algorithm::EC;
    const SignatureScheme scheme = isEC ? SignatureScheme::ECDSA : SignatureScheme::RSAPSS;
    const Bytes value = makeSignatureValue(key.getPrivateKey(), scheme, DigestAlgorithm::SHA256, "content");
    return checkSignatureValue(key.getPublicKey(), scheme, DigestAlgorithm::SHA256, "content", value)
               .status == SignatureValueStatus::Right;
}

TEST(SigningKeys, areReadInEachForm) {
    const opc::test::OpenSslCommand openssl;
    openssl.run("genpkey -algorithm RSA -pkeyopt rsa_keygen_bits:2048 -out rsa");
    openssl.run("genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-521 -out ec");
    openssl.run("ecparam -name P-384 -genkey -out key"); // with a block of parameters in front
    EXPECT_TRUE(signs(readSigningKey(openssl.read("key"))));
    for (const std::string kind : {"rsa", "ec"}) {
        const Bytes expected = readSigningKey(openssl.read(kind)).getPublicKey();
        for (const std::string form :
             {"pkey -outform DER", "pkey -traditional", "pkey -traditional -outform DER",
              "pkcs8 -topk8 -nocrypt -outform DER"}) {
            openssl.run(form + " -in " + kind + " -out key");
            const SigningKey key = readSigningKey(openssl.read("key"));
            EXPECT_EQ(key.getPublicKey(), expected) << kind << " " << form;
            EXPECT_TRUE(signs(key)) << kind << " " << form;
        }
        const PublicKeyNumbers numbers = getPublicKeyNumbers(expected);
        EXPECT_EQ(kind == "rsa" ? makeRSAPublicKey(numbers.modulus, numbers.exponent)
                                : makeECPublicKey("P-521", numbers.point),
                  expected);
    }
}

/// Some programs write both numbers only as long as the longer one is.
TEST(SigningKeys, makeValuesThatHoldWithoutTheirFirstZeros) {
    const SigningKey key = generateECKey("P-521");
    Bytes value;
    do
        value = makeSignatureValue(key.getPrivateKey(), SignatureScheme::ECDSA, DigestAlgorithm::SHA256, "a");
    while (value[0] != 0 || value[66] != 0);
    value.erase(value.begin() + 66);
    value.erase(value.begin());
    const auto check = [&] {
        return checkSignatureValue(key.getPublicKey(), SignatureScheme::ECDSA, DigestAlgorithm::SHA256, "a",
                                   value)
            .status;
    };
    EXPECT_EQ(check(), SignatureValueStatus::Right);
    value.pop_back();
    EXPECT_EQ(check(), SignatureValueStatus::Wrong);
}

TEST(SigningKeys, areMadeWithCertificates) {
    const opc::test::OpenSslCommand openssl;
    for (const std::string curve : {"P-256", "P-384", "P-521", ""}) {
        const auto& rsa = opc::test::keysOf(2048);
        const SigningKey key =
            curve.empty() ? SigningKey(rsa.getPrivateKey(), rsa.getPublicKey()) : generateECKey(curve);
        EXPECT_TRUE(signs(key)) << curve;
        EXPECT_EQ(describePublicKey(key.getPublicKey()).curve, curve);
        EXPECT_EQ(readPublicKey(key.getPublicKey()), key.getPublicKey());
        const X509Certificate certificate = makeSelfSignedCertificate(key, "\xC3\x84rger, Ada", 30);
        EXPECT_EQ(certificate.getPublicKey(), key.getPublicKey());
        EXPECT_TRUE(certificate.isValidForDigitalSigning());
        openssl.write("made", certificate.getAsByteArray());
        openssl.run("x509 -inform DER -in made -out made.pem");
        openssl.run("verify -x509_strict -CAfile made.pem made.pem");
        openssl.run("x509 -in made.pem -noout -checkend 2500000"); // in 29 days
        openssl.run("x509 -in made.pem -noout -pubkey -out public");
        EXPECT_EQ(readPublicKey(openssl.read("public")), key.getPublicKey());
    }
    EXPECT_THROW(generateECKey("P-224"), utils::InvalidKey);
    EXPECT_THROW(readPublicKey({'x'}), utils::InvalidKey);
    EXPECT_THROW(makeSelfSignedCertificate(generateECKey("P-256"), std::string(65, 'x'), 1),
                 CertificateException);
}

TEST(SigningKeys, areRefusedIfTheyCannotSign) {
    const opc::test::OpenSslCommand openssl;
    const std::pair<const char*, const char*> cases[] = {
        {"genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -aes256 -pass pass:x",
         "The private key is protected by a password."},
        {"genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-224",
         "The private key is neither RSA nor on the curve P-256, P-384 or P-521."},
        {"genpkey -algorithm ED25519",
         "The private key is neither RSA nor on the curve P-256, P-384 or P-521."},
        {"ecparam -name P-256", "The bytes are no private key"},
    };
    for (const auto& [command, message] : cases) {
        openssl.run(std::string(command) + " -out key");
        try {
            readSigningKey(openssl.read("key"));
            ADD_FAILURE() << command;
        } catch (const bedrock::crypto::utils::InvalidKey& e) {
            EXPECT_EQ(std::string(e.what()).rfind(std::string(message).substr(0, 29), 0), 0U) << e.what();
        }
    }
}

TEST(SigningKeys, areReadFromBundles) {
    const opc::test::OpenSslCommand openssl;
    for (const std::string key : {"rsa:2048", "ec -pkeyopt ec_paramgen_curve:P-256"}) {
        openssl.run("req -x509 -subj /CN=S -nodes -newkey " + key + " -keyout key -out cert");
        for (const std::string options : {"", "-legacy ", "-nokeys "}) {
            openssl.run("pkcs12 -export " + options + "-passout pass:p -inkey key -in cert -out bundle");
            const KeyBundle bundle = readKeyBundle(openssl.read("bundle"), "p");
            ASSERT_EQ(bundle.key.empty(), options == "-nokeys ");
            if (bundle.key.empty())
                continue;
            EXPECT_EQ(bundle.key.getPublicKey(), bundle.certificate.getPublicKey());
            EXPECT_TRUE(signs(bundle.key)) << key << options;
        }
        EXPECT_THROW(readKeyBundle(openssl.read("bundle"), "other"), CertificateException);
    }
}

} // namespace
