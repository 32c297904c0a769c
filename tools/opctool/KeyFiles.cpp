#include "KeyFiles.hpp"

#include "NewFile.hpp"
#include "Signals.hpp"

#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <bedrock/crypto/utils/Base64.hpp>
#include <bedrock/crypto/utils/Cleanse.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>
#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

namespace opctool {

namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::size_t KEY_SIZES[] = {1024, 2048, 4096};

/// The result of `read` for the first size of a key that the file's bytes fit; null if there is none.
template <typename Read>
auto tryAllSizes(const std::string& path, Read read) -> decltype(read(KEY_SIZES[0])) {
    for (const std::size_t bits : KEY_SIZES) {
        try {
            return read(bits);
        } catch (const bedrock::crypto::utils::UnusableKey& e) {
            throw opc::Exception(path + ": " + e.what());
        } catch (const bedrock::crypto::utils::InvalidKey&) {
            continue;
        }
    }
    return nullptr;
}

[[noreturn]] void failWithoutKey(const std::string& path, const char* kind) {
    throw opc::Exception(path + " contains no RSA " + kind + " key of 1024, 2048 or 4096 bits");
}

/// @return null if it isn't an RSA key of these sizes
std::shared_ptr<bedrock::crypto::RSAPublicKey> decodePublicKey(const std::string& path, const Bytes& bytes) {
    bedrock::crypto::cryptopp::CryptoProvider provider;
    return tryAllSizes(path, [&](std::size_t bits) { return provider.createRSAPublicKey(bits, bytes); });
}

/// The result of `read`. Its failures name the file.
template <typename Read>
auto translating(const std::string& path, Read read) {
    try {
        return read();
    } catch (const bedrock::crypto::utils::InvalidKey& e) {
        throw opc::Exception(path + ": " + e.what());
    }
}

/// Bytes that are overwritten on destruction.
struct SecretBytes {
    Bytes bytes;

    ~SecretBytes() { bedrock::crypto::utils::cleanse(bytes); }
};

Bytes toPem(const std::string& label, const Bytes& der) {
    constexpr std::size_t LINE = 64;
    std::u16string text = bedrock::crypto::utils::base64Encode(der);
    const auto append = [](Bytes& bytes, const std::string& line) {
        bytes.insert(bytes.end(), line.begin(), line.end());
    };
    Bytes pem;
    pem.reserve(text.size() + text.size() / LINE + 100); // so that growing leaves no copy of a secret behind
    append(pem, "-----BEGIN " + label + "-----\n");
    for (std::size_t i = 0; i < text.size(); ++i) {
        pem.push_back(static_cast<unsigned char>(text[i]));
        if (i % LINE == LINE - 1 || i + 1 == text.size())
            pem.push_back('\n');
        static_cast<volatile char16_t&>(text[i]) = 0;
    }
    append(pem, "-----END " + label + "-----\n");
    return pem;
}

} // namespace

Bytes readFile(const std::string& path) {
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    const bool opened = file.is_open();
    Bytes bytes{std::istreambuf_iterator<char>(file), {}};
    if (!opened || file.bad())
        throw opc::Exception(path + " can't be read",
                             {errno != 0 ? errno : EIO, boost::system::generic_category()});
    return bytes;
}

std::shared_ptr<bedrock::crypto::RSAPrivateKey> readPrivateKey(const std::string& path) {
    bedrock::crypto::cryptopp::CryptoProvider provider;
    const SecretBytes secret{readFile(path)};
    auto key =
        tryAllSizes(path, [&](std::size_t bits) { return provider.createRSAPrivateKey(bits, secret.bytes); });
    if (!key)
        failWithoutKey(path, "private");
    return key;
}

std::shared_ptr<bedrock::crypto::RSAPublicKey> readPublicKey(const std::string& path) {
    auto key = decodePublicKey(path, readFile(path));
    if (!key)
        failWithoutKey(path, "public");
    return key;
}

bedrock::crypto::SigningKey readSigningKey(const std::string& path) {
    const SecretBytes secret{readFile(path)};
    return translating(path, [&secret] { return bedrock::crypto::readSigningKey(secret.bytes); });
}

Bytes readAnyPublicKey(const std::string& path) {
    const Bytes bytes = readFile(path);
    const auto key = decodePublicKey(path, bytes);
    return key ? key->getAsByteArray()
               : translating(path, [&bytes] { return bedrock::crypto::readPublicKey(bytes); });
}

void writeKeyFiles(const bedrock::crypto::SigningKey& key,
                   const bedrock::certificates::X509Certificate& certificate, const std::string& base,
                   bool replace) {
    const WithoutSignals whole;
    NewFile privateFile(base + ".key", NewFile::Readers::Owner, replace);
    NewFile publicFile(base + ".pub", NewFile::Readers::All, replace);
    std::optional<NewFile> certificateFile;
    if (!certificate.empty()) {
        certificateFile.emplace(base + ".pem", NewFile::Readers::All, replace);
        certificateFile->write(toPem("CERTIFICATE", certificate.getAsByteArray()));
    }
    Bytes pem = toPem("PRIVATE KEY", key.getPrivateKey());
    privateFile.write(pem);
    bedrock::crypto::utils::cleanse(pem);
    publicFile.write(toPem("PUBLIC KEY", key.getPublicKey()));
    if (certificateFile)
        certificateFile->keep();
    publicFile.keep();
    privateFile.keep(); // last, because it can't be made again
}

} // namespace opctool
