#include "crypto/Digest.hpp"

#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>

#include <istream>
#include <streambuf>

namespace opc::standard_signatures {

namespace {

/// Reads a stream block by block into memory of its owner.
class BlockBuffer final : public std::streambuf {
public:
    static constexpr std::size_t BLOCK = 65536;

    /// @param block  of `BLOCK` bytes
    BlockBuffer(InputStream& stream, char* block) : stream(stream), block(block) {}

protected:
    int_type underflow() override {
        while (!stream.isDone()) {
            const std::uint64_t got = stream.read(reinterpret_cast<unsigned char*>(block), BLOCK);
            setg(block, block, block + got);
            if (got != 0)
                return traits_type::to_int_type(*block);
        }
        return traits_type::eof();
    }

private:
    InputStream& stream;
    char* const block;
};

/// Reads a text where it lies.
class TextBuffer final : public std::streambuf {
public:
    explicit TextBuffer(const std::string& text) {
        char* const begin = const_cast<char*>(text.data()); // nobody writes there
        setg(begin, begin, begin + text.size());
    }
};

} // namespace

bedrock::crypto::DigestEngine& Digester::engineOf(const DigestMethod& method) {
    auto& engine = engines[&method];
    if (!engine)
        engine = bedrock::crypto::cryptopp::CryptoProvider().createDigestEngine(method.algorithm);
    return *engine;
}

std::vector<unsigned char> Digester::of(InputStream& stream, const DigestMethod& method) {
    if (!block)
        block.reset(new char[BlockBuffer::BLOCK]); // not make_unique, which would clear it
    BlockBuffer buffer(stream, block.get());
    std::istream source(&buffer);
    return engineOf(method).computeDigest(source);
}

std::vector<unsigned char> Digester::of(const std::string& octets, const DigestMethod& method) {
    TextBuffer buffer(octets);
    std::istream source(&buffer);
    return engineOf(method).computeDigest(source);
}

std::vector<unsigned char> digestOf(const std::string& octets, const DigestMethod& method) {
    return Digester().of(octets, method);
}

} // namespace opc::standard_signatures
