#include "KeyFiles.hpp"

#include "Signals.hpp"

#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <bedrock/crypto/utils/Base64.hpp>
#include <bedrock/crypto/utils/Cleanse.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>
#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

[[noreturn]] void failWriting(const std::string& path) {
    const int error = errno;
    throw opc::Exception(
        path + (error == EEXIST ? " exists already; use --force to replace it" : " can't be written"),
        {error, boost::system::generic_category()});
}

/// A new file. If it may replace another one, it is written under another name first. Unless it is kept, it is
/// removed.
class NewFile {
public:
    NewFile(const std::string& name, mode_t mode, bool replace)
        : finalPath(name), path(replace ? name + "." + std::to_string(::getpid()) : name),
          descriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode)) {
        if (descriptor < 0)
            failWriting(finalPath);
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() {
        ::close(descriptor);
        if (!kept)
            ::unlink(path.c_str());
    }

    void write(const Bytes& bytes) const {
        for (std::size_t done = 0; done < bytes.size();) {
            const ssize_t count = ::write(descriptor, bytes.data() + done, bytes.size() - done);
            if (count < 0)
                failWriting(finalPath);
            done += static_cast<std::size_t>(count);
        }
        if (::fsync(descriptor) != 0 && errno != EINVAL) // EINVAL: the file can't be synced
            failWriting(finalPath);
    }
    void keep() {
        if (path != finalPath && ::rename(path.c_str(), finalPath.c_str()) != 0)
            failWriting(finalPath);
        kept = true;
    }

private:
    std::string finalPath;
    std::string path;
    int descriptor;
    bool kept = false;
};

} // namespace

Bytes readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
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
    constexpr mode_t OF_OWNER = S_IRUSR | S_IWUSR;
    constexpr mode_t OF_ALL = OF_OWNER | S_IRGRP | S_IROTH;
    const WithoutSignals whole;
    NewFile privateFile(base + ".key", OF_OWNER, replace);
    NewFile publicFile(base + ".pub", OF_ALL, replace);
    std::optional<NewFile> certificateFile;
    if (!certificate.empty()) {
        certificateFile.emplace(base + ".pem", OF_ALL, replace);
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
