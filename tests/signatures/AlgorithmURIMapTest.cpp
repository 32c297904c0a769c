#include "support/Cases.hpp"
#include "support/Texts.hpp"
#include "support/Throws.hpp"

#include <opc/model/AlgorithmURIMap.hpp>

namespace {

using namespace opc::model;
using namespace opc::test;

constexpr char NO_TAG[] = "Internal Error: Algorithm tag is not recognized.";
constexpr char NO_DIGEST[] = "Internal error: Digest Method is not supported in algorithm map.";
constexpr char NO_SIGNATURE[] = "Internal error: Signature Method is not supported in algorithm map.";

const std::u16string C14N = u"http://www.w3.org/TR/2001/REC-xml-c14n-20010315";

struct Algorithm {
    DigestMethod method;
    std::u16string digest, signature;
};

const std::u16string XMLDSIG = u"http://www.w3.org/2000/09/xmldsig#",
                     XMLENC = u"http://www.w3.org/2001/04/xmlenc#",
                     MORE = u"http://www.w3.org/2001/04/xmldsig-more#";

const Algorithm ALGORITHMS[] = {
    {DigestMethod::MD5, MORE + u"md5", MORE + u"rsa-md5"},
    {DigestMethod::SHA1, XMLDSIG + u"sha1", XMLDSIG + u"rsa-sha1"},
    {DigestMethod::SHA224, MORE + u"sha224", MORE + u"rsa-sha224"},
    {DigestMethod::SHA256, XMLENC + u"sha256", MORE + u"rsa-sha256"},
    {DigestMethod::SHA384, MORE + u"sha384", MORE + u"rsa-sha384"},
    {DigestMethod::SHA512, XMLENC + u"sha512", MORE + u"rsa-sha512"},
};

TEST(AlgorithmURIMap, mapsAlgorithmsToIdentifiersAndBack) {
    std::uint32_t row = 0;
    for (const Algorithm& a : ALGORITHMS) {
        EXPECT_EQ(AlgorithmURIMap::getAlgorithmURI(static_cast<AlgorithmTag>(row)), a.digest);
        EXPECT_EQ(AlgorithmURIMap::getAlgorithmURI(static_cast<AlgorithmTag>(row + 6)), a.signature);
        EXPECT_EQ(AlgorithmURIMap::getAlgorithmURI(a.method), a.digest);
        for (auto key : {SignatureMethod::RSA1024, SignatureMethod::RSA2048, SignatureMethod::RSA4096})
            EXPECT_EQ(AlgorithmURIMap::getAlgorithmURI(a.method, key), a.signature);
        EXPECT_EQ(AlgorithmURIMap::getDigestMethod(a.digest), a.method);
        EXPECT_EQ(AlgorithmURIMap::getSigningParameters(a.signature),
                  std::make_pair(a.method, SignatureMethod::RSA2048));
        ++row;
    }
    EXPECT_EQ(AlgorithmURIMap::getAlgorithmURI(AlgorithmTag::TagC14N), C14N);
}

TEST(AlgorithmURIMap, refusesEachWrongRoleWithItsMessage) {
    const auto check = [](const std::u16string& uri, const std::string& asDigest,
                          const std::string& asSignature) {
        const auto messageOf = [](const auto& action) {
            const std::string outcome = outcomeOf(action);
            return outcome.empty() ? "" : replaced(outcome, "opc::Exception: ", "");
        };
        EXPECT_EQ(messageOf([&] { AlgorithmURIMap::getDigestMethod(uri); }), asDigest);
        EXPECT_EQ(messageOf([&] { AlgorithmURIMap::getSigningParameters(uri); }), asSignature);
    };
    forEachCase("signatures/wrong-roles.txt", check);
}

TEST(AlgorithmURIMap, refusesValuesWithoutAName) {
    const auto noDigest = static_cast<DigestMethod>(6);
    const auto noKey = static_cast<SignatureMethod>(4);
    EXPECT_RAISES(opc::Exception, NO_TAG, AlgorithmURIMap::getAlgorithmURI(static_cast<AlgorithmTag>(13)));
    EXPECT_RAISES(opc::Exception, NO_DIGEST, AlgorithmURIMap::getAlgorithmURI(noDigest));
    EXPECT_RAISES(opc::Exception, NO_DIGEST,
                  AlgorithmURIMap::getAlgorithmURI(noDigest, SignatureMethod::RSA1024));
    for (const SignatureMethod key : {SignatureMethod::NoKey, noKey}) {
        EXPECT_RAISES(opc::Exception, NO_SIGNATURE, AlgorithmURIMap::getAlgorithmURI(noDigest, key))
            << "the key is looked at first";
        EXPECT_RAISES(opc::Exception, "Signature Method is unsupported.", signatureMethodToKeySize(key));
    }
}

TEST(SignatureParams, keySizesAreExactlyThree) {
    for (const std::uint64_t bits : {1024U, 2048U, 4096U})
        EXPECT_EQ(signatureMethodToKeySize(keySizeToSignatureMethod(bits)), bits);
    for (const std::uint64_t bits : {std::uint64_t(0), std::uint64_t(1023), std::uint64_t(3072),
                                     std::uint64_t(8192), (std::uint64_t(1) << 32) + 1024}) {
        EXPECT_RAISES(opc::Exception, "Input key size is not supported as a Signature Method.",
                      keySizeToSignatureMethod(bits));
    }
    EXPECT_EQ(SignatureParams().getDigestMethod(), DigestMethod::SHA512);
    EXPECT_EQ(SignatureParams().getSignatureMethod(), SignatureMethod::RSA2048);
}

} // namespace
