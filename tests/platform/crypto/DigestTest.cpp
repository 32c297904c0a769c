#include "CryptoSupport.hpp"

#include <bedrock/crypto/utils/Exceptions.hpp>

#include <algorithm>
#include <cstring>
#include <functional>
#include <sstream>

namespace {

using namespace bedrock::test;
using bedrock::crypto::CryptoEngine;
using bedrock::crypto::DigestEngine;
using bedrock::crypto::utils::CouldNotComputeDigest;

using Maker = std::shared_ptr<DigestEngine> (CryptoEngine::*)() const;

// FIPS 180-2, appendices A to D, with change notice 1 for SHA-224; RFC 1321, section A.5: the digests of "abc".
struct Algorithm {
    const char* name;
    Maker make;
    const char* digest;
};
const Algorithm Algorithms[] = {
    {"md5", &CryptoEngine::createMD5DigestEngine, "900150983cd24fb0d6963f7d28e17f72"},
    {"sha1", &CryptoEngine::createSHA1DigestEngine, "a9993e364706816aba3e25717850c26c9cd0d89d"},
    {"sha224", &CryptoEngine::createSHA224DigestEngine,
     "23097d223405d8228642a477bda255b32aadbce4bda0b3f7e36c9da7"},
    {"sha256", &CryptoEngine::createSHA256DigestEngine,
     "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
    {"sha384", &CryptoEngine::createSHA384DigestEngine,
     "cb00753f45a35e8bb5a03d699ac65007272c32ab0eded1631a8b605a43ff5bed8086072ba1e7cc2358baeca134c825a7"},
    {"sha512", &CryptoEngine::createSHA512DigestEngine,
     "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
     "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f"},
};

/// Gives its text in pieces of an odd size, and then throws if it is told to.
class PiecewiseBuffer : public std::streambuf {
public:
    PiecewiseBuffer(std::string text, bool throwsAtEnd) : text(std::move(text)), throwsAtEnd(throwsAtEnd) {}

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

TEST(Digest, isThatOfTheStandardsAndOfTheCommandLine) {
    const opc::test::OpenSslCommand openssl;
    std::string content(1000000, '\0');
    for (unsigned i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>(i * 2654435761u >> 24);
    const CryptoEngine engine = makeEngine();
    for (const Algorithm& algorithm : Algorithms) {
        const auto digests = (engine.*algorithm.make)();
        EXPECT_EQ(hex(digests->computeDigest(bytesOf("abc"))), algorithm.digest) << algorithm.name;
        for (const std::size_t size : {0U, 56U, 200001U, 1000000U}) {
            const std::string text = content.substr(0, size);
            openssl.write("content", bytesOf(text));
            const std::string expected = openssl.run(std::string("dgst -r -") + algorithm.name + " content")
                                             .substr(0, std::strlen(algorithm.digest));
            EXPECT_EQ(hex(digests->computeDigest(bytesOf(text))), expected) << algorithm.name << size;
            std::istringstream stream(text);
            EXPECT_EQ(hex(digests->computeDigest(stream)), expected) << algorithm.name << size;
            EXPECT_TRUE(stream.eof() && !stream.bad());
            PiecewiseBuffer pieces(text, false);
            std::istream odd(&pieces);
            EXPECT_EQ(hex(digests->computeDigest(odd)), expected) << algorithm.name << size;
        }
    }
}

TEST(Digest, piecesAreDigestedAsTheyCome) {
    const auto digests = makeEngine().createSHA256DigestEngine();
    const auto expected = digests->computeDigest(bytesOf("abc"));
    digests->start();
    digests->update("xyz", 3); // given up
    digests->start();
    for (const char* const piece : {"a", "", "bc"})
        digests->update(piece, std::strlen(piece));
    EXPECT_EQ(digests->finish(), expected);
    EXPECT_EQ(digests->computeDigest(bytesOf("abc")), expected);
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
