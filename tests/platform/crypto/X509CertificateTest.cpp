#include "CryptoSupport.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>
#include <bedrock/crypto/utils/Base64.hpp>

#include <algorithm>

namespace {

using namespace bedrock::certificates;
using namespace bedrock::test;

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

X509Certificate withKeyOf(std::size_t rsaBits, const char* usage = "") {
    return makeSigner(nullptr,
                      [&](CertificateRecipe& r) {
                          r.rsaBits = rsaBits;
                          r.keyUsage = usage;
                      })
        .certificate;
}

TEST(X509Certificate, commandLineReadsTheSame) {
    const X509Certificate certificate =
        makeSigner(nullptr, [](CertificateRecipe& r) { r.subject = "Zoë, of \"Test\""; }).certificate;
    const opc::test::OpenSslCommand openssl;
    openssl.write("der", certificate.getAsByteArray());
    const auto ask = [&openssl](const std::string& question) {
        const std::string answer = openssl.run("x509 -inform DER -in der -noout " + question);
        return answer.substr(answer.find('=') + 1);
    };
    EXPECT_EQ(upper(hex(certificate.getModulus())) + "\n", ask("-modulus"));
    EXPECT_EQ(certificate.getSubject() + "\n", ask("-subject -nameopt RFC2253,-esc_msb"));
    std::string fingerprint = ask("-fingerprint -sha256");
    fingerprint.erase(std::remove(fingerprint.begin(), fingerprint.end(), ':'), fingerprint.end());
    EXPECT_EQ(upper(certificate.getSHA256Fingerprint()) + "\n", fingerprint);
    EXPECT_EQ(certificate.getPublicExponent(), (Bytes{1, 0, 1}));
    EXPECT_EQ(certificate.getKeySize(), 2048u);
    std::string until = ask("-enddate -dateopt iso_8601");
    until[until.find(' ')] = 'T';
    EXPECT_EQ(certificate.getValidity().until + "\n", until);
    EXPECT_EQ(certificate.getValidity().from, "2000-01-01T00:00:00Z");

    const std::string text = certificate.getAsString();
    EXPECT_EQ(bedrock::crypto::utils::base64Decode(std::u16string(text.begin(), text.end())),
              openssl.read("der"));
    openssl.run("x509 -inform DER -in der -out pem");
    EXPECT_EQ(X509Certificate(openssl.read("pem")).getAsByteArray(), openssl.read("der"));
}

TEST(X509Certificate, whatIsntOneCertificateIsRefused) {
    const Bytes der = withKeyOf(1024).getAsByteArray();
    for (std::size_t size = 0; size < der.size(); ++size) {
        const Bytes cut(der.data(), der.data() + size);
        EXPECT_TRUE(fails<X509CertificateException>([&cut] { X509Certificate{cut}; })) << size;
    }
    Bytes longer = der;
    longer.push_back(0);
    const opc::test::OpenSslCommand openssl;
    openssl.write("der", der);
    openssl.run("x509 -inform DER -in der -out pem");
    const Bytes pem = openssl.read("pem");
    Bytes twice = pem;
    twice.insert(twice.end(), pem.begin(), pem.end());
    const Bytes half(pem.data(), pem.data() + pem.size() / 2);
    openssl.run("x509 -in pem -addtrust codeSigning -out trusted");
    Bytes among = bytesOf("Subject: someone\n");
    among.insert(among.end(), pem.begin(), pem.end());
    among.push_back('.');
    EXPECT_EQ(X509Certificate(among).getAsByteArray(), der);
    const std::string base64 = X509Certificate(der).getAsString();
    for (const Bytes& bytes : {longer, twice, half, openssl.read("trusted"), bytesOf(base64),
                               Bytes(1 << 20, 0x30), Bytes(1 << 20, 0xFF)})
        EXPECT_TRUE(fails<X509CertificateException>([&bytes] { X509Certificate{bytes}; }));
}

// Any wrong byte gives an exception, or a certificate that can be used.
TEST(X509Certificate, damageDoesntCrash) {
    const Bytes der = withKeyOf(1024, "digitalSignature").getAsByteArray();
    for (std::size_t position = 0; position < der.size(); ++position) {
        for (const int mask : {0x01, 0x80, 0xFF}) {
            Bytes damaged = der;
            damaged[position] ^= static_cast<unsigned char>(mask);
            try {
                const X509Certificate certificate(damaged);
                TrustStore store;
                store.addCertificate(certificate);
                (void)certificate.getModulus();
                (void)certificate.getSubject();
                (void)certificate.getValidity();
                (void)certificate.validateCertificate({}, {}, store);
            } catch (const X509CertificateException&) {
            }
            ASSERT_EQ(ERR_peek_error(), 0u) << position;
        }
    }
}

TEST(X509Certificate, anEmptyOneHasNoKeyAndNoContent) {
    const X509Certificate none;
    EXPECT_TRUE(none.empty());
    EXPECT_FALSE(none.isValidForDigitalSigning());
    EXPECT_EQ(none.getKeySize(), 0u);
    EXPECT_TRUE(none.getModulus().empty() && none.getPublicExponent().empty());
    EXPECT_TRUE(fails<X509CertificateException>([&none] { (void)none.getAsString(); }));
    EXPECT_TRUE(fails<X509CertificateException>([&none] { (void)none.getSHA256Fingerprint(); }));
    EXPECT_TRUE(fails<X509CertificateException>([&none] { none.validateCertificate({}, {}, {}); }));
    EXPECT_TRUE(fails<X509CertificateException>([&none] { TrustStore().addCertificate(none); }));
}

TEST(X509Certificate, keyUsageDecidesAboutSigning) {
    for (const char* usage :
         {"", "digitalSignature", "critical,nonRepudiation", "keyEncipherment,digitalSignature"})
        EXPECT_TRUE(withKeyOf(0, usage).isValidForDigitalSigning()) << usage;
    for (const char* usage : {"keyEncipherment", "keyCertSign,cRLSign"})
        EXPECT_FALSE(withKeyOf(0, usage).isValidForDigitalSigning()) << usage;
}

TEST(X509Certificate, otherKeysHaveNoModulus) {
    const X509Certificate onCurve = withKeyOf(0);
    EXPECT_EQ(onCurve.getKeySize(), 256u);
    EXPECT_TRUE(onCurve.getModulus().empty());
    EXPECT_TRUE(onCurve.getPublicExponent().empty());
}

} // namespace
