// Verifying packages that are signed in the profile of office programs, compared with the least work: reading the
// archive, inflating and digesting all items, parsing relationships and the signature part with expat, and one RSA
// operation. What is digested of relationships and of the signature part are other forms of about the same length.
//
//   standard_bench [FOLDER [ROUNDS]]
//
// Without a folder it uses the documents of office programs among the tests, and packages that it makes in such shapes.
// It signs copies of them with RSA of 2048 bits, SHA-256 and a certificate, as office programs do. A package that is
// signed already is left out. In the end it verifies a part with 20,000 relationships.

#include "FileTimes.hpp"
#include "RawArchive.hpp"
#include "RawVerification.hpp"
#include "RealShapes.hpp"
#include "support/TemporaryFolder.hpp"

#include <bedrock/certificates/SelfSignedCertificate.hpp>
#include <bedrock/crypto/RsaKeyPair.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/StandardPartInfo.hpp>
#include <opc/physical/ZipPackage.hpp>
#include <opc/standard_signatures/Signing.hpp>
#include <opc/standard_signatures/Verification.hpp>

#include <openssl/evp.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace opc;
using namespace opc::standard_signatures;
using interfaces::OpenMode;

constexpr double MOST_SECONDS = 0.5; // for the large relationships part

const bedrock::crypto::RsaKeyPair& keys() {
    static const auto made = bedrock::crypto::generateRsaKeyPair(2048);
    return made;
}

const Signer& signer() {
    static const Signer made = [] {
        auto key = bedrock::crypto::readSigningKey(keys().getPrivateKey());
        auto certificate = bedrock::certificates::makeSelfSignedCertificate(key, "Ada", 1);
        return Signer{std::move(key), std::move(certificate), {}};
    }();
    return made;
}

const bench::RawRsa& rawRsa() {
    static const bench::RawRsa made(EVP_sha256());
    return made;
}

void signWhole(const fs::path& path) {
    physical::ZipPackage archive(path);
    archive.open(OpenMode::ReadOnly);
    const bool isSigned = hasSignatures(archive);
    archive.close(true);
    if (isSigned)
        throw std::runtime_error("it is signed already");
    model::Package package(archive);
    package.open(OpenMode::ReadWrite);
    sign(package, archive, signer());
    package.close(false);
}

void openOnly(const fs::path& path) {
    physical::ZipPackage archive(path);
    archive.open(OpenMode::ReadOnly);
    archive.close(true);
}

void verifyWhole(const fs::path& path) {
    physical::ZipPackage archive(path);
    archive.open(OpenMode::ReadOnly);
    VerificationPolicy policy;
    policy.trust.emplace().publicKeys = {keys().getPublicKey()};
    const PackageVerification result = verify(archive, policy);
    archive.close(true);
    if (!result.isYes())
        throw std::runtime_error("the signature doesn't hold");
}

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

void verifyRaw(const fs::path& path) {
    bench::RawArchive archive(path);
    bench::RawDigest digest(EVP_sha256());
    for (const auto& item : archive.directory()) {
        const std::string_view content = archive.content(item);
        if (endsWith(item.name, ".rels") || item.name.rfind("_xmlsignatures/sig", 0) == 0)
            bench::parseByExpat(content);
        digest(content);
    }
    rawRsa().verify();
}

/// Signs a copy of each package in `folder`.
/// @return the copies that hold
std::vector<fs::path> signedCopies(const fs::path& folder, const fs::path& copies) {
    const auto copyOf = [&](const fs::path& file) { return copies / file.filename(); };
    auto files = bench::filesFor(folder, [&](const fs::path& file) {
        fs::copy_file(file, copyOf(file));
        signWhole(copyOf(file));
        verifyWhole(copyOf(file));
        verifyRaw(copyOf(file));
    });
    std::transform(files.begin(), files.end(), files.begin(), copyOf);
    return files;
}

void compare(const char* title, const std::vector<fs::path>& files, int rounds) {
    if (files.empty())
        return;
    const auto times = bench::measure(files, {verifyWhole, openOnly, verifyRaw}, rounds);
    bench::FileTimes alone = times[0];
    for (std::size_t i = 0; i < alone.size(); ++i)
        alone[i] -= times[1][i];
    bench::printHeading((std::to_string(files.size()) + " signed packages " + title).c_str());
    bench::printRatios("opening and verifying", times[0], times[2]);
    bench::printRatios("verifying alone", alone, times[2]);
}

/// A small package whose document has that many links.
void writeLinks(const fs::path& path, int count) {
    physical::ZipPackage archive(path);
    model::Package package(archive);
    package.open(OpenMode::CreateOnly);
    model::Part document =
        package.createPart(model::PartName(u"/word/document.xml"), model::ContentType(u"application/xml"),
                           model::StandardPartInfo());
    package.createInternalRelationship(u"urn:document", model::URI(u"/word/document.xml"));
    for (int i = 0; i < count; ++i)
        document.createExternalRelationship(u"urn:link", u"http://example.com/?page=1&line=2");
    package.close(false);
}

/// @return whether it was fast enough
bool measureManyRelationships(const fs::path& path) {
    writeLinks(path, 20000);
    signWhole(path);
    const auto times = bench::measure({path}, {verifyWhole}, 3);
    const double seconds = times[0][0].count();
    std::printf("20,000 relationships in one part: %.3f s\n", seconds);
    return seconds < MOST_SECONDS;
}

} // namespace

int main(int argc, char** argv) try {
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 12;
    signer(); // before the processes that sign start, so that they share the keys
    rawRsa();
    const opc::test::TemporaryFolder copies;
    if (argc > 1) {
        compare("of the folder", signedCopies(argv[1], copies.path()), rounds);
        return 0;
    }
    const opc::test::TemporaryFolder made;
    bench::writeRealShapes(made.path());
    compare("of office programs", signedCopies(OPCMODEL_OFFICE_FILES, copies.path()), rounds);
    compare("made", signedCopies(made.path(), copies.path()), rounds);
    return measureManyRelationships(copies / "links.docx") ? 0 : 1;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
