#include "CryptoSupport.hpp"
#include "support/Cases.hpp"

#include <bedrock/crypto/utils/Base64.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>

namespace {

using namespace bedrock::test;
using bedrock::crypto::utils::base64Decode;
using bedrock::crypto::utils::base64Encode;
using opc::test::forEachCase;

TEST(Base64, publishedVectors) {
    forEachCase("base64/vectors.txt", [](const std::string& text, const std::u16string& encoded) {
        EXPECT_EQ(base64Encode(bytesOf(text)), encoded);
        EXPECT_EQ(base64Decode(encoded), bytesOf(text));
    });
}

TEST(Base64, everyByteComesBack) {
    Bytes bytes;
    for (int value = 0; value < 256; ++value) {
        bytes.push_back(static_cast<unsigned char>(value));
        EXPECT_EQ(base64Decode(base64Encode(bytes)), bytes);
    }
}

TEST(Base64, blanksAndLineEndsAreSkipped) {
    for (const std::u16string text :
         {u" Zm9v\r\nYg==\t", u"\nZ\nm\n9\nv\nY\ng\n=\n=\n", u"Zm9vYg= =", u"Zm 9vYg=="})
        EXPECT_EQ(base64Decode(text), bytesOf("foob"));
    EXPECT_EQ(base64Decode(u" \r\n\t"), Bytes());
}

TEST(Base64, whatIsntBase64IsRefused) {
    forEachCase("base64/refused.txt", [](const std::u16string& text) {
        EXPECT_TRUE(fails<bedrock::crypto::utils::Exception>([&] { base64Decode(text); }));
    });
}

} // namespace
