#include "RsaPublicKeyScanner.hpp"

#include <cstddef>
#include <string_view>

namespace bedrock::crypto {

namespace {

using namespace std::string_view_literals;

enum Tag : unsigned char { Integer = 0x02, BitString = 0x03, Sequence = 0x30 };

/// rsaEncryption and its absent parameters (RFC 8017 appendix A.1).
constexpr auto AlgorithmIdentifier = "\x06\x09\x2A\x86\x48\x86\xF7\x0D\x01\x01\x01\x05\x00"sv;

constexpr std::string_view NoUnusedBits{"\0", 1};

unsigned char byteAt(std::string_view bytes, std::size_t index) {
    return index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0;
}

/// Takes an element from the beginning of `bytes`.
/// @return its content; nothing if another element comes next, or one that is too long for a key
std::optional<std::string_view> take(std::string_view& bytes, Tag tag) {
    if (byteAt(bytes, 0) != tag)
        return std::nullopt;
    std::size_t headSize = 2;
    std::size_t size = byteAt(bytes, 1);
    if (size == 0x81) {
        headSize = 3;
        size = byteAt(bytes, 2);
    } else if (size == 0x82) {
        headSize = 4;
        size = byteAt(bytes, 2) * std::size_t{0x100} + byteAt(bytes, 3);
    } else if (size >= 0x80) {
        return std::nullopt;
    }
    if (bytes.size() < headSize + size)
        return std::nullopt;
    const std::string_view content = bytes.substr(headSize, size);
    bytes.remove_prefix(headSize + size);
    return content;
}

/// An element that fills `bytes`.
std::optional<std::string_view> takeAll(std::string_view bytes, Tag tag) {
    const auto content = take(bytes, tag);
    return bytes.empty() ? content : std::nullopt;
}

bool takePrefix(std::string_view& bytes, std::string_view prefix) {
    if (bytes.substr(0, prefix.size()) != prefix)
        return false;
    bytes.remove_prefix(prefix.size());
    return true;
}

/// Takes a number, which counts as positive, as in OpenSSL; null if no number comes next.
openssl::BnPtr takeNumber(std::string_view& bytes) {
    const auto content = take(bytes, Integer);
    return content ? openssl::toNumber({content->begin(), content->end()}) : nullptr;
}

} // namespace

std::optional<RsaPublicNumbers> scanRsaPublicKey(const std::vector<unsigned char>& der) {
    auto info = takeAll({reinterpret_cast<const char*>(der.data()), der.size()}, Sequence);
    if (!info || take(*info, Sequence) != AlgorithmIdentifier)
        return std::nullopt;
    auto key = takeAll(*info, BitString);
    if (!key || !takePrefix(*key, NoUnusedBits))
        return std::nullopt;
    auto pair = takeAll(*key, Sequence);
    if (!pair)
        return std::nullopt;
    RsaPublicNumbers numbers{takeNumber(*pair), nullptr};
    if (numbers.modulus)
        numbers.exponent = takeNumber(*pair);
    if (!numbers.exponent || !pair->empty())
        return std::nullopt;
    return numbers;
}

} // namespace bedrock::crypto
