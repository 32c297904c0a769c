#include "signatures/SignatureDocuments.hpp"
#include "support/Cases.hpp"
#include "support/SignatureComparison.hpp"

namespace {

using namespace opc::test;

TEST(SignatureScanner, whatThisLibraryWritesIsRecognised) {
    const std::string key = piece(WRITTEN_SIGNATURE, "<KeyInfo>", "<Object");
    const auto x509 = [](const std::string& content) {
        return "<KeyInfo><X509Data><X509Certificate>" + content + "</X509Certificate></X509Data></KeyInfo>";
    };
    const std::string another = "</X509Certificate><X509Certificate>";
    const std::string signer = certificate("rsa:2048");
    const auto expectPlain = [](const std::string& from, const std::string& to) {
        const auto document = toBytes(replaced(WRITTEN_SIGNATURE, from, to));
        EXPECT_TRUE(SignatureComparison::isRecognised(document)) << from << " -> " << to;
        EXPECT_EQ(SignatureComparison().findDifference(document), "");
    };
    forEachCase("signatures/plain.txt", expectPlain);
    const std::string keys[] = {key, "", x509(signer),
                                x509(signer + another + certificate("rsa:1024") + another + signer),
                                // plain documents that fail
                                x509("AQID"), x509(signer + another + "AQID"), x509(certificate("rsa:3072"))};
    for (const std::string& other : keys)
        expectPlain(key, other);
}

TEST(SignatureScanner, everyDoubtIsLeftToTheParser) {
    forEachCase("signatures/not-plain.txt", [](const std::string& from, const std::string& to) {
        EXPECT_FALSE(SignatureComparison::isRecognised(toBytes(replaced(WRITTEN_SIGNATURE, from, to))));
    });
    EXPECT_FALSE(SignatureComparison::isRecognised({}));
}

} // namespace
