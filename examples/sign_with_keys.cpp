// Signs a package with a new key, and judges its signatures by the public half of the key.

#include <bedrock/crypto/RsaKeyPair.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/SignaturePolicy.hpp>
#include <opc/model/SignatureVerdict.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <iostream>

using namespace opc::model;

static void sign(const std::filesystem::path& path, const bedrock::crypto::RsaKeyPair& keys) {
    opc::physical::ZipPackage archive(path);
    Package package(archive);
    DigitalSignatureManager signatures(package); // before the package is opened
    package.open(opc::interfaces::OpenMode::ReadWrite);
    signatures.signPackage(keys.getPrivateKey(), SignatureParams()); // SHA-512, RSA of 2048 bits
    package.close(false);
}

static bool verify(const std::filesystem::path& path, const std::vector<unsigned char>& publicKey) {
    opc::physical::ZipPackage archive(path);
    Package package(archive);
    DigitalSignatureManager signatures(package);
    package.open(opc::interfaces::OpenMode::ReadOnly);
    const SignatureVerdict verdict = signatures.judge(SignaturePolicy::byPublicKey(publicKey));
    for (const JudgedSignature& judged : verdict.getSignatures())
        std::cout << opc::toUDEString(judged.signature.getName()) << ' ' << judged.status << '\n';
    for (const VerdictReason& reason : verdict.getReasons())
        std::cout << reason.text << '\n';
    return verdict.isYes();
}

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: sign_with_keys FILE\n";
        return 2;
    }
    try {
        const bedrock::crypto::RsaKeyPair keys = bedrock::crypto::generateRsaKeyPair(2048);
        sign(argv[1], keys);
        return verify(argv[1], keys.getPublicKey()) ? 0 : 1;
    } catch (const std::exception& e) {
        std::cerr << e.what() << '\n';
        return 3;
    }
}
