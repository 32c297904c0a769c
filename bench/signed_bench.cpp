// Verifying signed packages like those of real users, compared with the least work: reading the archive, inflating
// and digesting all items, parsing the signature part with expat, and one RSA operation.
//
//   signed_bench [FOLDER [ROUNDS]]
//
// Without a folder it uses the documents of office programs among the tests, and packages that it makes in such
// shapes. It signs whole copies of them, as `opctool sign` does, with RSA of 2048 bits and SHA-512, and verifies them
// by the public key, as `opctool verify` does. `alone` verifies a package that is already open; for `with listing`,
// the least work includes the least work of listing the package.

#include "FileTimes.hpp"
#include "RawArchive.hpp"
#include "RawListing.hpp"
#include "RawVerification.hpp"
#include "RealShapes.hpp"
#include "support/TemporaryFolder.hpp"

#include <bedrock/crypto/RsaKeyPair.hpp>
#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/SignaturePolicy.hpp>
#include <opc/model/SignatureVerdict.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <openssl/evp.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace opc::model;
using opc::interfaces::OpenMode;

const bedrock::crypto::RsaKeyPair& keys() {
    static const auto made = bedrock::crypto::generateRsaKeyPair(2048);
    return made;
}

opc::physical::ZipOptions lenientOptions() {
    opc::physical::ZipOptions options;
    options.lenient = true;
    return options;
}

/// A package as `opctool` opens it.
struct Opened {
    Opened(const fs::path& path, OpenMode mode)
        : archive(path, lenientOptions()), lenient(archive), package(lenient), manager(package) {
        package.open(mode);
    }

    opc::physical::ZipPackage archive;
    opc::physical::LenientPackage lenient;
    Package package;
    DigitalSignatureManager manager;
};

/// All parts, and all relationships by their types.
void signWhole(const fs::path& path) {
    Opened opened(path, OpenMode::ReadWrite);
    std::vector<PartName> parts;
    std::vector<RelationshipSelector> selectors;
    const auto select = [&](const RelationshipSource& source) {
        std::set<std::u16string> types;
        for (const Relationship& relationship : source.getRelationships(ExcludeMode::ExcludeManaged))
            if (types.insert(relationship.getType()).second)
                selectors.emplace_back(relationship.getSourceURI(), RelationshipSelectorType::SourceType,
                                       relationship.getType());
    };
    for (const Part& part : opened.package.getParts(ExcludeMode::ExcludeManaged)) {
        parts.push_back(part.getName());
        select(part);
    }
    select(opened.package);
    opened.manager.sign(parts, selectors, keys().getPrivateKey(), SignatureParams());
    opened.package.close(false);
}

void openOnly(const fs::path& path) {
    const Opened opened(path, OpenMode::ReadOnly);
}

void verify(const fs::path& path) {
    Opened opened(path, OpenMode::ReadOnly);
    const auto verdict = opened.manager.judge(SignaturePolicy::byPublicKey(keys().getPublicKey()));
    if (!verdict.isYes())
        throw std::runtime_error(verdict.getReasons().front().text);
}

const bench::RawRsa& bareRsa() {
    static const bench::RawRsa made(EVP_sha512());
    return made;
}

bool isSignature(const std::string& name) {
    return name.rfind("_xmlsignatures/sig", 0) == 0;
}

void verifyRaw(const fs::path& path) {
    bench::RawArchive archive(path);
    bench::RawDigest digest(EVP_sha512());
    for (const auto& item : archive.directory()) {
        const std::string_view content = archive.content(item);
        if (isSignature(item.name))
            bench::parseByExpat(content);
        else
            digest(content);
    }
    bareRsa().verify();
}

/// Signs a copy of each package in `folder`.
/// @return the copies that hold
std::vector<fs::path> signedCopies(const fs::path& folder, const fs::path& copies) {
    const auto copyOf = [&](const fs::path& file) { return copies / file.filename(); };
    auto files = bench::filesFor(folder, [&](const fs::path& file) {
        fs::copy_file(file, copyOf(file));
        signWhole(copyOf(file));
        verify(copyOf(file));
        verifyRaw(copyOf(file));
    });
    std::transform(files.begin(), files.end(), files.begin(), copyOf);
    return files;
}

bench::FileTimes combine(bench::FileTimes times, const bench::FileTimes& others, double sign) {
    for (std::size_t i = 0; i < times.size(); ++i)
        times[i] += sign * others[i];
    return times;
}

void compare(const char* title, const std::vector<fs::path>& files, int rounds) {
    if (files.empty())
        return;
    const auto times = bench::measure(files, {verify, openOnly, verifyRaw, bench::listRawPackage}, rounds);
    const auto& [verifying, opening, raw, listing] = std::tie(times[0], times[1], times[2], times[3]);
    bench::printHeading((std::to_string(files.size()) + " signed packages " + title).c_str());
    bench::printRatios("opening and verifying", verifying, raw);
    bench::printRatios("the same, with listing", verifying, combine(raw, listing, 1));
    bench::printRatios("verifying alone", combine(verifying, opening, -1), raw);
    bench::printRatios("opening", opening, raw);
}

} // namespace

int main(int argc, char** argv) try {
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 12;
    keys(); // before the processes that sign start, so that they share the keys
    bareRsa();
    const opc::test::TemporaryFolder copies;
    if (argc > 1) {
        compare("of the folder", signedCopies(argv[1], copies.path()), rounds);
        return 0;
    }
    const opc::test::TemporaryFolder made;
    bench::writeRealShapes(made.path());
    compare("of office programs", signedCopies(OPCMODEL_OFFICE_FILES, copies.path()), rounds);
    compare("made", signedCopies(made.path(), copies.path()), rounds);
    return 0;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
