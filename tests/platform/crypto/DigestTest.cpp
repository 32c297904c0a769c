#include "CryptoSupport.hpp"

#include <bedrock/crypto/utils/Exceptions.hpp>
#include <support/OpenSslCommand.hpp>

#include <algorithm>
#include <functional>
#include <sstream>

namespace {

using namespace bedrock::test;
using bedrock::crypto::CryptoEngine;
using bedrock::crypto::DigestEngine;
using bedrock::crypto::utils::CouldNotComputeDigest;

using Maker = std::shared_ptr<DigestEngine> (CryptoEngine::*)() const;

const std::string FourHundredFortyEightBits = "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq";
const std::string MillionLetters(1000000, 'a');

// FIPS 180-2, appendices A to D, with change notice 1 for SHA-224; RFC 1321, section A.5.
struct Vector {
    const char* name;
    Maker make;
    std::string message;
    const char* digest;
};
const Vector Vectors[] = {
    {"MD5", &CryptoEngine::createMD5DigestEngine, "", "d41d8cd98f00b204e9800998ecf8427e"},
    {"MD5", &CryptoEngine::createMD5DigestEngine, "abc", "900150983cd24fb0d6963f7d28e17f72"},
    {"SHA1", &CryptoEngine::createSHA1DigestEngine, "abc", "a9993e364706816aba3e25717850c26c9cd0d89d"},
    {"SHA1", &CryptoEngine::createSHA1DigestEngine, FourHundredFortyEightBits,
     "84983e441c3bd26ebaae4aa1f95129e5e54670f1"},
    {"SHA1", &CryptoEngine::createSHA1DigestEngine, MillionLetters,
     "34aa973cd4c4daa4f61eeb2bdbad27316534016f"},
    {"SHA224", &CryptoEngine::createSHA224DigestEngine, "abc",
     "23097d223405d8228642a477bda255b32aadbce4bda0b3f7e36c9da7"},
    {"SHA224", &CryptoEngine::createSHA224DigestEngine, MillionLetters,
     "20794655980c91d8bbb4c1ea97618a4bf03f42581948b2ee4ee7ad67"},
    {"SHA256", &CryptoEngine::createSHA256DigestEngine, "abc",
     "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
    {"SHA256", &CryptoEngine::createSHA256DigestEngine, FourHundredFortyEightBits,
     "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
    {"SHA256", &CryptoEngine::createSHA256DigestEngine, MillionLetters,
     "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    {"SHA384", &CryptoEngine::createSHA384DigestEngine, "abc",
     "cb00753f45a35e8bb5a03d699ac65007272c32ab0eded1631a8b605a43ff5bed8086072ba1e7cc2358baeca134c825a7"},
    {"SHA384", &CryptoEngine::createSHA384DigestEngine, MillionLetters,
     "9d0e1809716474cb086e834e310a4a1ced149e9c00f248527972cec5704c2a5b07b8b3dc38ecc4ebae97ddd87f3d8985"},
    {"SHA512", &CryptoEngine::createSHA512DigestEngine, "abc",
     "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a2192992a274fc1a836ba3c23a3feebbd454d442"
     "3"
     "643ce80e2a9ac94fa54ca49f"},
    {"SHA512", &CryptoEngine::createSHA512DigestEngine, MillionLetters,
     "e718483d0ce769644e2e42c7bc15b4638e1f98b13b2044285632a803afa973ebde0ff244877ea60a4cb0432ce577c31beb009c5"
     "c"
     "2c49aa2e4eadb217ad8cc09b"},
};

/// Hands out its text in pieces of an odd size, and then throws if it is told to.
class PiecewiseBuffer : public std::streambuf {
public:
    PiecewiseBuffer(std::string content, bool breaks) : text(std::move(content)), throwsAtEnd(breaks) {}

protected:
    int_type underflow() override {
        if (position == text.size() && throwsAtEnd)
            throw std::domain_error("the disk is gone");
        if (position == text.size())
            return traits_type::eof();
        const std::size_t count = std::min<std::size_t>(4099, text.size() - position);
        setg(&text[position], &text[position], &text[position] + count);
        position += count;
        return traits_type::to_int_type(*gptr());
    }

private:
    std::string text;
    bool throwsAtEnd;
    std::size_t position = 0;
};

TEST(Digest, publishedVectorsAsBytesAndAsStreams) {
    const CryptoEngine engine = makeEngine();
    for (const Vector& vector : Vectors) {
        const auto digests = (engine.*vector.make)();
        EXPECT_EQ(hex(digests->computeDigest(bytesOf(vector.message))), vector.digest) << vector.name;
        std::istringstream stream(vector.message);
        EXPECT_EQ(hex(digests->computeDigest(stream)), vector.digest) << vector.name;
        EXPECT_TRUE(stream.eof() && !stream.bad());
        PiecewiseBuffer pieces(vector.message, false);
        std::istream odd(&pieces);
        EXPECT_EQ(hex(digests->computeDigest(odd)), vector.digest) << vector.name;
    }
}

TEST(Digest, commandLineAgrees) {
    const opc::test::OpenSslCommand openssl;
    Bytes content;
    for (unsigned count = 0; count < 200001; ++count)
        content.push_back(static_cast<unsigned char>(count * 2654435761u >> 24));
    openssl.write("content", content);
    const std::pair<const char*, Maker> algorithms[] = {
        {"md5", &CryptoEngine::createMD5DigestEngine},
        {"sha1", &CryptoEngine::createSHA1DigestEngine},
        {"sha224", &CryptoEngine::createSHA224DigestEngine},
        {"sha256", &CryptoEngine::createSHA256DigestEngine},
        {"sha384", &CryptoEngine::createSHA384DigestEngine},
        {"sha512", &CryptoEngine::createSHA512DigestEngine},
    };
    for (const auto& [name, make] : algorithms) {
        std::istringstream stream(std::string(content.begin(), content.end()));
        const std::string expected = openssl.run(std::string("dgst -r -") + name + " content");
        EXPECT_EQ(hex((makeEngine().*make)()->computeDigest(stream)) + " *content\n", expected);
    }
}

TEST(Digest, streamIsReadFromItsPosition) {
    const auto digests = makeEngine().createSHA256DigestEngine();
    std::istringstream stream("xyzabc");
    stream.seekg(3);
    EXPECT_EQ(digests->computeDigest(stream), digests->computeDigest(bytesOf("abc")));
}

TEST(Digest, failuresLeaveTheEngineUsable) {
    const auto digests = makeEngine().createSHA1DigestEngine();
    std::istringstream failed("abc");
    failed.setstate(std::ios_base::failbit);
    EXPECT_TRUE(fails<CouldNotComputeDigest>([&] { digests->computeDigest(failed); }));
    std::istream without(nullptr);
    EXPECT_TRUE(fails<CouldNotComputeDigest>([&] { digests->computeDigest(without); }));
    PiecewiseBuffer broken("abc", true);
    std::istream breaking(&broken);
    EXPECT_TRUE(fails<std::domain_error>([&] { digests->computeDigest(breaking); }));
    EXPECT_EQ(hex(digests->computeDigest(bytesOf("abc"))), "a9993e364706816aba3e25717850c26c9cd0d89d");
}

} // namespace
