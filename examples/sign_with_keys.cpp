// Signs a package with a new key, and checks the signature by the key's public half.

#include <bedrock/crypto/RsaKeyPair.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Package.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <iostream>

using namespace opc::model;

static std::u16string sign(const std::filesystem::path& path, const bedrock::crypto::RsaKeyPair& keys) {
    opc::physical::ZipPackage archive(path);
    Package package(archive);
    DigitalSignatureManager signatures(package); // before the package is opened
    package.open(opc::interfaces::OpenMode::ReadWrite);
    const DigitalSignature signature =
        signatures.signPackage(keys.getPrivateKey(), SignatureParams()); // SHA-512, RSA of 2048 bits
    package.close(false);
    return signature.getName();
}

static bool verify(const std::filesystem::path& path, const std::u16string& name,
                   const std::vector<unsigned char>& publicKey) {
    opc::physical::ZipPackage archive(path);
    Package package(archive);
    DigitalSignatureManager signatures(package);
    package.open(opc::interfaces::OpenMode::ReadOnly);
    const auto status = signatures.verifySignature(signatures.getSignature(name), publicKey);
    std::cout << opc::toUDEString(name) << (status.isProperlyCodesigned() ? " holds\n" : " doesn't hold\n");
    return status.isProperlyCodesigned();
}

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: sign_with_keys FILE\n";
        return 2;
    }
    try {
        const bedrock::crypto::RsaKeyPair keys = bedrock::crypto::generateRsaKeyPair(2048);
        const std::u16string name = sign(argv[1], keys);
        return verify(argv[1], name, keys.getPublicKey()) ? 0 : 1;
    } catch (const std::exception& e) { // InvalidSignature, if a signature can't be checked at all
        std::cerr << e.what() << '\n';
        return 3;
    }
}
