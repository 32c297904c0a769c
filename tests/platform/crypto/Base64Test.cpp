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
        u"Z",                         // no whole byte
        u"Zg",                        // padding missing
        u"Zg=",                       // padding cut short
        u"Zm9v=",                     // padding where none belongs
        u"Zg===",                     // too much of it
        u"=",                         // nothing else
        u"====",                      //
        u"Zg==Zg==",                  // two texts
        u"Zh==",                      // bits behind the last byte
        u"Zm9=",                      //
        u"Zm9v-_",                    // another alphabet
        u"Zm9\u00A0v",                // a blank that isn't one of XML
        u"Zm9\u0176",                 // like "v" in its low byte
        std::u16string(u"Zm9v\0", 5), // a zero
    };
    for (const std::u16string& text : texts)
        EXPECT_TRUE(fails<bedrock::crypto::utils::Exception>([&] { base64Decode(text); }))
            << std::string(text.begin(), text.end());
}

} // namespace
