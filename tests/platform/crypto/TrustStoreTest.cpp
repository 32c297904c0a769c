#include "CryptoSupport.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>

#include <cstdlib>

namespace {

using namespace bedrock::certificates;
using namespace bedrock::test;

class TrustStoreTest : public testing::Test {
protected:
    TrustStoreTest() : first(makeIssuer("First")), second(makeIssuer("Second")) {
        Bytes text = bytesOf("# both\n");
        for (const auto& [name, identity] : {std::pair("first", &first), std::pair("second", &second)}) {
            const std::string file = name;
            openssl.write(file + ".der", identity->certificate.getAsByteArray());
            openssl.run("x509 -inform DER -in " + file + ".der -out " + file + ".pem");
            const Bytes pem = openssl.read(file + ".pem");
            text.insert(text.end(), pem.begin(), pem.end());
        }
        openssl.write("both.pem", text);
        text.resize(text.size() - 100);
        openssl.write("broken.pem", text);
        openssl.write("empty", {});
        openssl.write("text", bytesOf("no certificate"));
    }

    CertificateChainStatus validate(const Identity& issuer, const TrustStore& store) const {
        return opc::test::makeSigner(&issuer)
            .certificate.validateCertificate({}, {}, store)
            .getCertificateChainStatus();
    }

    opc::test::OpenSslCommand openssl;
    Identity first, second;
};

TEST_F(TrustStoreTest, readsFilesAndFolders) {
    TrustStore store;
    EXPECT_TRUE(store.empty());
    store.addFile(openssl.path("both.pem"));
    EXPECT_EQ(store.getCertificates().size(), 2u);
    store.addFile(openssl.path("first.der"));
    EXPECT_EQ(validate(second, store), CertificateChainStatus::Good) << "a certificate may stand in it twice";

    std::filesystem::create_directories(openssl.path("folder/deeper"));
    openssl.write("folder/second.pem", openssl.read("second.pem"));
    openssl.write("folder/first.der", openssl.read("first.der"));
    std::filesystem::create_symlink("missing", openssl.path("folder/nowhere"));
    TrustStore fromFolder;
    fromFolder.addFolder(openssl.path("folder"));
    EXPECT_EQ(fromFolder.getCertificates().size(), 2u);
}

TEST_F(TrustStoreTest, badFilesAddNothing) {
    TrustStore store;
    for (const char* file : {"broken.pem", "empty", "text", "missing", "."})
        EXPECT_TRUE(fails<CertificateException>([&] { store.addFile(openssl.path(file)); })) << file;
    std::filesystem::create_directory(openssl.path("nothing"));
    std::filesystem::create_directory(openssl.path("loop"));
    std::filesystem::create_symlink("circle", openssl.path("loop/circle"));
    openssl.write("loop/first.der", openssl.read("first.der"));
    for (const char* folder : {".", "nothing", "missing", "text", "loop"})
        EXPECT_TRUE(fails<CertificateException>([&] { store.addFolder(openssl.path(folder)); })) << folder;
    EXPECT_TRUE(store.empty());
}

TEST_F(TrustStoreTest, takesInTheSystem) {
    setenv("SSL_CERT_FILE", openssl.path("first.pem").c_str(), 1);
    setenv("SSL_CERT_DIR", openssl.path("missing").c_str(), 1);
    TrustStore store;
    store.addCertificate(second.certificate);
    EXPECT_EQ(validate(first, store), CertificateChainStatus::UnknownIssuer);
    store.addSystemCertificates(TrustStore::Usage(1), false);
    EXPECT_EQ(validate(first, store), CertificateChainStatus::Good);
    EXPECT_EQ(validate(second, store), CertificateChainStatus::Good);
    store.addSystemCertificates(TrustStore::Usage::Signing, true);
    EXPECT_FALSE(store.empty());
    EXPECT_EQ(validate(second, store), CertificateChainStatus::UnknownIssuer);

    // A certificate with its own settings, which forbid signing.
    openssl.run("x509 -in first.pem -addreject codeSigning -out rejected.pem");
    setenv("SSL_CERT_FILE", openssl.path("rejected.pem").c_str(), 1);
    EXPECT_EQ(validate(first, store), CertificateChainStatus::UnknownIssuer);
    store.addSystemCertificates(TrustStore::Usage::Any, false);
    EXPECT_EQ(validate(first, store), CertificateChainStatus::Good);

    openssl.write("rejected.pem", openssl.read("text")); // which has no certificate
    EXPECT_EQ(validate(first, store), CertificateChainStatus::UnknownIssuer);
    unsetenv("SSL_CERT_FILE");
    unsetenv("SSL_CERT_DIR");
}

} // namespace
