#include "CryptoSupport.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/certificates/PKCS12Certificate.hpp>

#include <cstdlib>

namespace {

using namespace bedrock::certificates;
using namespace bedrock::test;

/// Bundles that the command line makes from a root, an issuer and a signer.
class PKCS12CertificateTest : public testing::Test {
protected:
    PKCS12CertificateTest()
        : root(opc::test::makeIssuer("Root")), issuer(opc::test::makeIssuer("Issuer", &root)),
          signer(opc::test::makeSigner(&issuer)) {
        const std::pair<const char*, const Identity&> all[] = {
            {"root", root}, {"issuer", issuer}, {"signer", signer}};
        for (const auto& [name, identity] : all) {
            const std::string file = name;
            openssl.write(file + ".der", identity.certificate.getAsByteArray());
            openssl.write(file + ".key.der", identity.getPrivateKey());
            openssl.run("x509 -inform DER -in " + file + ".der -out " + file + ".pem");
            openssl.run("pkey -inform DER -in " + file + ".key.der -out " + file + ".key.pem");
        }
    }

    Bytes bundle(const std::string& arguments) const {
        openssl.run("pkcs12 -export -passout pass:geheimß -out bundle " + arguments);
        return openssl.read("bundle");
    }

    opc::test::OpenSslCommand openssl;
    Identity root, issuer, signer;
    const std::string password = "geheimß";
    const std::string whole = "-inkey signer.key.pem -in signer.pem ";
};

TEST_F(PKCS12CertificateTest, givesKeyCertificateAndChain) {
    Bytes chain = openssl.read("issuer.pem");
    const Bytes rootPem = openssl.read("root.pem");
    chain.insert(chain.end(), rootPem.begin(), rootPem.end());
    openssl.write("chain.pem", chain);
    for (const char* algorithm :
         {"", "-legacy ", "-keypbe PBE-SHA1-3DES -certpbe PBE-SHA1-3DES -macalg sha1 "}) {
        const PKCS12Certificate read(bundle(algorithm + whole + "-certfile chain.pem"), password);
        EXPECT_EQ(ERR_peek_error(), 0u);
        EXPECT_EQ(read.getCertificate().getAsByteArray(), signer.certificate.getAsByteArray()) << algorithm;
        const auto& others = read.getCAChain().getCertificates();
        ASSERT_EQ(others.size(), 2u) << algorithm;
        EXPECT_EQ(others[0].getAsByteArray(), issuer.certificate.getAsByteArray());
        EXPECT_EQ(others[1].getAsByteArray(), root.certificate.getAsByteArray());
        const auto key = makeEngine().createRSA2048PrivateKey(read.getCertificate().getModulus(),
                                                              read.getPrivateExponent(),
                                                              read.getCertificate().getPublicExponent());
        EXPECT_EQ(key->getAsByteArray(), signer.getPrivateKey());
    }
}

TEST_F(PKCS12CertificateTest, halfBundlesAreReadAsFarAsTheyGo) {
    const PKCS12Certificate keyless(bundle("-nokeys -in signer.pem"), password);
    EXPECT_TRUE(keyless.getPrivateExponent().empty());
    EXPECT_TRUE(keyless.getCertificate().empty());
    EXPECT_TRUE(keyless.getCertificate().getModulus().empty())
        << "a caller takes it before it asks for the key";
    EXPECT_EQ(keyless.getCAChain().getCertificates().size(), 1u);
    const PKCS12Certificate bare(bundle("-nocerts -inkey signer.key.pem"), password);
    EXPECT_FALSE(bare.getPrivateExponent().empty());
    EXPECT_TRUE(bare.getCertificate().empty());
}

TEST_F(PKCS12CertificateTest, badBundlesAreRefused) {
    const Bytes good = bundle(whole);
    for (std::size_t size = 0; size < good.size(); size += size < 64 ? 1 : 13) {
        const Bytes cut(good.data(), good.data() + size);
        EXPECT_TRUE(fails<CertificateException>([&] { PKCS12Certificate(cut, password); })) << size;
    }
    for (const char* wrong : {"", "geheim", "Geheimß", "geheimß "})
        EXPECT_TRUE(fails<CertificateException>([&] { PKCS12Certificate(good, wrong); })) << wrong;
    EXPECT_TRUE(
        fails<CertificateException>([&] { PKCS12Certificate(openssl.read("signer.pem"), password); }));
    EXPECT_TRUE(fails<CertificateException>([&] { PKCS12Certificate(Bytes(1 << 20, 0x30), password); }));
    const Bytes onCurve = bundle("-inkey root.key.pem -in root.pem");
    EXPECT_TRUE(fails<CertificateException>([&] { PKCS12Certificate(onCurve, password); }));
}

TEST_F(PKCS12CertificateTest, oldAlgorithmsNeedTheLegacyProvider) {
    const Bytes old = bundle("-legacy " + whole);
    ASSERT_EQ(setenv("OPENSSL_MODULES", "/nonexistent", 1), 0);
    const auto result = fails<CertificateException>([&] { PKCS12Certificate(old, password); });
    unsetenv("OPENSSL_MODULES");
    EXPECT_TRUE(result);
    EXPECT_NE(std::string(result.message()).find("legacy provider, which isn't installed"), std::string::npos)
        << result.message();
    EXPECT_TRUE(fails<CertificateException>([&] { PKCS12Certificate(old, "wrong"); }));
}

} // namespace
