#include "EvpDigestEngine.hpp"

#include <bedrock/crypto/utils/Exceptions.hpp>

#include <algorithm>
#include <istream>
#include <streambuf>

namespace bedrock::crypto {

namespace {

constexpr std::size_t BlockSize = std::size_t{64} * 1024;

/// The bytes that a stream buffer has ready. They are read in place, so a stream over memory needs no copy.
class Window : public std::streambuf {
public:
    /// Makes the buffer read if it is empty.
    static bool fill(std::streambuf& buffer) { return buffer.sgetc() != std::streambuf::traits_type::eof(); }
    static std::size_t size(const std::streambuf& buffer) {
        return static_cast<std::size_t>((buffer.*&Window::egptr)() - (buffer.*&Window::gptr)());
    }
    static const char* start(const std::streambuf& buffer) { return (buffer.*&Window::gptr)(); }
    static void skip(std::streambuf& buffer, std::size_t count) {
        (buffer.*&Window::gbump)(static_cast<int>(count));
    }
};

} // namespace

const char* getOpenSslName(DigestAlgorithm algorithm) {
    switch (algorithm) {
    case DigestAlgorithm::MD5:
        return "MD5";
    case DigestAlgorithm::SHA1:
        return "SHA1";
    case DigestAlgorithm::SHA224:
        return "SHA2-224";
    case DigestAlgorithm::SHA256:
        return "SHA2-256";
    case DigestAlgorithm::SHA384:
        return "SHA2-384";
    case DigestAlgorithm::SHA512:
        return "SHA2-512";
    }
    throw utils::CouldNotComputeDigest("There is no such digest algorithm.");
}

EvpDigestEngine::EvpDigestEngine(DigestAlgorithm algorithm) : algorithm(algorithm) {
    const openssl::ErrorScope scope;
    const char* name = getOpenSslName(algorithm);
    digest.reset(EVP_MD_fetch(nullptr, name, nullptr));
    if (!digest)
        openssl::fail<utils::CouldNotComputeDigest>(std::string("OpenSSL doesn't offer the digest ") + name +
                                                    ".");
    context = openssl::made(openssl::MdCtxPtr(EVP_MD_CTX_new()));
}

std::vector<unsigned char> EvpDigestEngine::computeDigest(const std::vector<unsigned char>& bytes) {
    start();
    update(bytes.data(), bytes.size());
    return finish();
}

std::vector<unsigned char> EvpDigestEngine::computeDigest(std::istream& stream) {
    if (stream.fail())
        throw utils::CouldNotComputeDigest("The stream to digest has failed.");
    start();
    // Bypasses the stream's own functions: those would swallow exceptions of a physical layer.
    std::streambuf& source = *stream.rdbuf();
    while (Window::fill(source)) {
        const std::size_t count = std::min(Window::size(source), BlockSize);
        update(Window::start(source), count);
        Window::skip(source, count);
        if (Window::size(source) == 0 &&
            source.in_avail() >= std::streamsize{BlockSize}) // more than the buffer of a file stream
            updateInBlocks(source);
    }
    std::vector<unsigned char> value = finish();
    stream.setstate(std::ios_base::eofbit);
    return value;
}

void EvpDigestEngine::start() {
    const openssl::ErrorScope scope;
    if (!EVP_DigestInit_ex2(context.get(), digest.get(), nullptr))
        openssl::fail<utils::CouldNotComputeDigest>("A digest can't be started.");
}

void EvpDigestEngine::updateInBlocks(std::streambuf& source) {
    if (!block)
        block.reset(new char[BlockSize]);
    std::streamsize count = 0;
    while ((count = source.sgetn(block.get(), BlockSize)) > 0)
        update(block.get(), static_cast<std::size_t>(count));
}

void EvpDigestEngine::update(const void* bytes, std::size_t count) {
    const openssl::ErrorScope scope;
    if (!EVP_DigestUpdate(context.get(), bytes, count))
        openssl::fail<utils::CouldNotComputeDigest>("A digest can't be computed.");
}

std::vector<unsigned char> EvpDigestEngine::finish() {
    const openssl::ErrorScope scope;
    std::vector<unsigned char> value(static_cast<std::size_t>(EVP_MD_get_size(digest.get())));
    if (!EVP_DigestFinal_ex(context.get(), value.data(), nullptr))
        openssl::fail<utils::CouldNotComputeDigest>("A digest can't be finished.");
    return value;
}

} // namespace bedrock::crypto
