#include "CryptoSupport.hpp"

#include <bedrock/crypto/utils/Base64.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>

namespace {

using namespace bedrock::test;
using bedrock::crypto::utils::base64Decode;
using bedrock::crypto::utils::base64Encode;

TEST(Base64, publishedVectors) {
    const std::pair<std::string, std::u16string> vectors[] = {
        {"", u""},
        {"f", u"Zg=="},
        {"fo", u"Zm8="},
        {"foo", u"Zm9v"},
        {"foob", u"Zm9vYg=="},
        {"fooba", u"Zm9vYmE="},
        {"foobar", u"Zm9vYmFy"},
        {"\xFF\xEF\xBF\xFB\xFF", u"/++/+/8="},
    };
    for (const auto& [text, encoded] : vectors) {
        EXPECT_EQ(base64Encode(bytesOf(text)), encoded);
        EXPECT_EQ(base64Decode(encoded), bytesOf(text));
    }
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
    const std::u16string texts[] = {
        // padding that is missing, cut short, or out of place; no whole byte
        u"Z", u"Zg", u"Zg=", u"Zm9v=", u"Zg===", u"=", u"====", u"Zg==Zg==",
        // bits behind the last byte
        u"Zh==", u"Zm9=",
        // another alphabet, a blank that isn't one of XML, like "v" in its low byte, a zero
        u"Zm9v-_", u"Zm9\u00A0v", u"Zm9\u0176", std::u16string(u"Zm9v\0", 5)};
    for (const std::u16string& text : texts)
        EXPECT_TRUE(fails<bedrock::crypto::utils::Exception>([&] { base64Decode(text); }))
            << std::string(text.begin(), text.end());
}

} // namespace
