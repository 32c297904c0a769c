#include "StandardSigning.hpp"

#include "FileRun.hpp"
#include "KeyFiles.hpp"
#include "Password.hpp"
#include "SignatureAdditions.hpp"
#include "SignedPackage.hpp"
#include "SigningProfile.hpp"
#include "SigningResult.hpp"
#include "SourceDate.hpp"

#include <bedrock/certificates/KeyBundle.hpp>
#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>
#include <opc/standard_signatures/Signing.hpp>

#include <algorithm>
#include <optional>
#include <utility>

namespace opctool {

namespace {

using bedrock::certificates::X509Certificate;
using bedrock::crypto::DigestAlgorithm;
using opc::standard_signatures::NewSignature;
using opc::standard_signatures::Signer;
using opc::standard_signatures::SigningOptions;

constexpr std::size_t TOLD = 5; // a small package can hold very many

DigestAlgorithm digestOf(const std::string& name) {
    if (name.empty() || name == "sha256")
        return DigestAlgorithm::SHA256;
    if (name == "sha384")
        return DigestAlgorithm::SHA384;
    if (name != "sha512")
        refuseUnlessProfile("--digest " + name, Profile::OpcModel);
    return DigestAlgorithm::SHA512;
}

void throwIfOfOwnProfile(const SignArguments& arguments) {
    const std::pair<const char*, bool> given[] = {
        {"--public", !arguments.signing.publicKey.empty()},
        {"--relationship-type", !arguments.relationshipTypes.empty()},
        {"--trust", !arguments.signing.trust.files.empty()},
        {"--crl", !arguments.signing.trust.revocationLists.empty()},
    };
    for (const auto& [option, isGiven] : given)
        if (isGiven)
            refuseUnlessProfile(option, Profile::OpcModel);
}

Signer readSigner(const SigningArguments& arguments) {
    if (!arguments.bundle.empty()) {
        const Password password(arguments.passwordFile);
        auto bundle = bedrock::certificates::readKeyBundle(readFile(arguments.bundle), password.get());
        return {std::move(bundle.key), std::move(bundle.certificate), std::move(bundle.others)};
    }
    Signer signer{readSigningKey(arguments.key), {}, {}};
    for (const std::string& file : {arguments.certificate, arguments.chain})
        if (!file.empty())
            for (X509Certificate& certificate : readCertificates(file))
                signer.chain.push_back(std::move(certificate));
    if (!arguments.certificate.empty()) {
        signer.certificate = signer.chain.front();
        signer.chain.erase(signer.chain.begin());
    }
    return signer;
}

SigningOptions makeOptions(const SignArguments& arguments) {
    SigningOptions options;
    options.digest = digestOf(arguments.signing.digest);
    options.acceptWeak = arguments.signing.trust.acceptWeak;
    options.signsAll = arguments.all;
    options.parts = arguments.parts;
    for (const std::string& argument : arguments.relationships) { // IDs have no colon
        const std::size_t colon = argument.rfind(':');
        options.relationships.push_back({argument.substr(0, colon), argument.substr(colon + 1)});
    }
    options.comments = arguments.comment;
    options.time = presentTime();
    return options;
}

/// Why others may not trust the certificate; empty if nothing is known against it.
/// @param time  of signing
std::string findDoubt(const X509Certificate& certificate, std::chrono::system_clock::time_point time) {
    if (certificate.empty())
        return {};
    const auto validity = certificate.getValidity();
    const std::string claimed = opc::toUDEString(opc::convertTimeToString(time));
    if (claimed < validity.from)
        return "the certificate is valid only from " + validity.from;
    if (claimed > validity.until)
        return "the certificate is valid only until " + validity.until;
    return certificate.isValidForDigitalSigning() ? "" : "the certificate isn't there for signing";
}

/// A list on one line.
template <typename Item, typename Describe>
std::string enumerate(const std::vector<Item>& items, std::size_t count, const Describe& describe) {
    std::string text;
    for (std::size_t i = 0; i < std::min(items.size(), TOLD); ++i)
        text += (i == 0 ? "" : "; ") + describe(items[i]);
    if (count > TOLD)
        text += "; and " + std::to_string(count - TOLD) + " more";
    return text;
}

void warn(FileRun& run, const NewSignature& signature, const SignArguments& arguments,
          const std::string& doubt) {
    using opc::standard_signatures::Unsigned;
    if (!signature.unreachable.empty())
        run.tell("warning: no relationship leads to " +
                 enumerate(signature.unreachable, signature.unreachable.size(),
                           [](const std::string& name) { return name; }) +
                 ". Find out why: unless programs find parts in another way, as those of NuGet do, one that "
                 "is added "
                 "later can bring them into the document");
    if (!signature.dangling.empty())
        run.tell(
            "warning: " +
            enumerate(signature.dangling, signature.dangling.size(),
                      [](const std::string& relationship) { return relationship; }) +
            " leads to a part that isn't there. Find out why: one that is added later can come in its place");
    if (arguments.choosesNothing() && signature.coverage.gapCount != 0)
        run.tell("warning: the signature can't cover " +
                 enumerate(signature.coverage.gaps, signature.coverage.gapCount, [](const Unsigned& gap) {
                     return gap.place + (gap.id.empty() ? "" : "#" + gap.id) + ": " + gap.text;
                 }));
    if (!doubt.empty())
        run.tell("warning: " + doubt);
}

} // namespace

void signInStandardProfile(FileRun& run, SignedPackage& package, const SignArguments& arguments) {
    throwIfOfOwnProfile(arguments);
    const SigningOptions options = makeOptions(arguments);
    const Signer signer = readSigner(arguments.signing);
    std::optional<SignatureAdditions> additions;
    if (package.hasOwnSignatures())
        additions.emplace(*package);
    const NewSignature made = opc::standard_signatures::sign(*package, package.asItLies(), signer, options);
    if (additions)
        opc::editing::throwIfBroken(additions->findBroken(*package));
    package.save();
    warn(run, made, arguments, findDoubt(signer.certificate, *options.time));
    printResult(run, {made.name, Profile::Standard, made.part,
                      made.coverage.isComplete() ? "complete" : "partial", made.unreachable, made.dangling});
}

} // namespace opctool
