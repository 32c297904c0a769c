// Signs a package with a PKCS#12 bundle, and checks that the signature leads to a trusted certificate.

#include <bedrock/certificates/CertificateValidationOptions.hpp>
#include <bedrock/certificates/PKCS12Certificate.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/codesigning_verifier/FingerprintStore.hpp>
#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Package.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <fstream>
#include <iostream>
#include <iterator>

using namespace opc::model;
using bedrock::certificates::PKCS12Certificate;
using bedrock::certificates::TrustStore;
using bedrock::codesigning_verifier::FingerprintStore;

static std::u16string sign(const char* path, const PKCS12Certificate& bundle, const TrustStore& trusted) {
    opc::physical::ZipPackage archive{std::filesystem::path(path)};
    Package package(archive);
    DigitalSignatureManager signatures(package); // before the package is opened
    package.open(opc::interfaces::OpenMode::ReadWrite);
    const DigitalSignature signature = signatures.signPackage(bundle, {}, SignatureParams(), trusted);
    package.close(false);
    return signature.getName();
}

static bool verify(const char* path, const std::u16string& name, const TrustStore& trusted) {
    opc::physical::ZipPackage archive{std::filesystem::path(path)};
    Package package(archive);
    DigitalSignatureManager signatures(package);
    package.open(opc::interfaces::OpenMode::ReadOnly);
    const DigitalSignature signature = signatures.getSignature(name);
    const auto status = signatures.verifySignature(signature, FingerprintStore(), {}, trusted);
    std::cout << signature.getCertificate().getSubject()
              << (status.isProperlyCodesigned() ? ": holds\n" : ": doesn't hold\n");
    return status.isProperlyCodesigned();
}

int main(int argc, char** argv) {
    if (argc != 5) {
        std::cerr << "usage: sign_with_certificate FILE BUNDLE PASSWORD TRUSTED\n";
        return 2;
    }
    try {
        std::ifstream file(argv[2], std::ios::binary);
        const std::vector<unsigned char> bytes{std::istreambuf_iterator<char>(file), {}};
        TrustStore trusted;
        trusted.addFile(argv[4]);
        const std::u16string name = sign(argv[1], PKCS12Certificate(bytes, argv[3]), trusted);
        return verify(argv[1], name, trusted) ? 0 : 1;
    } catch (const std::exception& e) {
        std::cerr << e.what() << '\n';
        return 3;
    }
}
