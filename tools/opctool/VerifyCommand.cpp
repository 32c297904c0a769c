#include "Commands.hpp"
#include "CoverageText.hpp"
#include "KeyFiles.hpp"
#include "Messages.hpp"
#include "OpenedPackage.hpp"
#include "RepeatableOption.hpp"
#include "SignedPackage.hpp"
#include "SigningMaterial.hpp"
#include "Table.hpp"
#include "TerminalText.hpp"
#include "Trust.hpp"

#include <bedrock/codesigning_verifier/FingerprintStore.hpp>
#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/SignaturePolicy.hpp>
#include <opc/model/SignatureVerdict.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace opctool {

namespace {

using bedrock::codesigning_verifier::FingerprintStore;
using nlohmann::ordered_json;
using opc::toUDEString;
using opc::model::JudgedSignature;
using opc::model::PackageCoverage;
using opc::model::SignatureMethod;
using opc::model::SignaturePolicy;
using opc::model::SignatureVerdict;
using opc::model::SignerEvidence;
using opc::model::VerdictReason;

struct Arguments {
    PackageArgument package;
    std::string publicKey;
    Trust trust;
    std::vector<std::string> fingerprints;
    std::string signature;
    bool requireFull = false;
    bool json = false;
};

std::string checkFingerprint(const std::string& fingerprint) {
    try {
        FingerprintStore().addFingerprint(fingerprint);
        return {};
    } catch (const std::invalid_argument& e) {
        return e.what();
    }
}

SignaturePolicy makeSignerPolicy(const Arguments& arguments) {
    if (!arguments.publicKey.empty())
        return SignaturePolicy::byPublicKey(readPublicKey(arguments.publicKey)->getAsByteArray());
    FingerprintStore fingerprints;
    for (const std::string& fingerprint : arguments.fingerprints)
        fingerprints.addFingerprint(fingerprint);
    if (arguments.trust.files.empty() && !arguments.fingerprints.empty())
        return SignaturePolicy::byFingerprints(fingerprints);
    return SignaturePolicy::byTrust(makeTrustStore(arguments.trust), makeValidationOptions(arguments.trust),
                                    fingerprints);
}

SignatureVerdict judge(const Arguments& arguments) {
    const SignaturePolicy policy =
        makeSignerPolicy(arguments).acceptWeak(arguments.trust.acceptWeak).requireFull(arguments.requireFull);
    SignedPackage package(arguments.package, opc::interfaces::OpenMode::ReadOnly);
    if (arguments.signature.empty())
        return package.signatures().judge(policy);
    return package.signatures().judge(package.signatures().getSignature(fromArgument(arguments.signature)),
                                      policy);
}

ordered_json describe(const JudgedSignature& judged) {
    const auto params = judged.signature.getSignatureParams();
    ordered_json row{{"name", toUDEString(judged.signature.getName())},
                     {"time", nullptr}, // as the signer claims
                     {"digest", nameOf(params.getDigestMethod())},
                     {"keySize", nullptr},
                     {"signer", nullptr},
                     {"fingerprint", nullptr},
                     {"status", judged.status},
                     {"code", judged.code.value()},
                     {"holds", judged.holds},
                     {"reason", judged.reason},
                     {"weak", judged.weaknesses},
                     {"restsOnClaimedTime", judged.restsOnClaimedTime}};
    if (!judged.claimedTime.is_special())
        row["time"] = toUDEString(opc::convertTimeToString(judged.claimedTime));
    if (params.getSignatureMethod() != SignatureMethod::NoKey)
        row["keySize"] = opc::model::signatureMethodToKeySize(params.getSignatureMethod());
    if (judged.evidence == SignerEvidence::PublicKey)
        row["signer"] = "key";
    if (!judged.signer.empty()) {
        row["signer"] = judged.signer.getSubject();
        row["fingerprint"] = judged.signer.getSHA256Fingerprint();
    }
    return row;
}

std::string orDash(const ordered_json& text) {
    return text.is_null() ? "-" : text.get<std::string>();
}

void printTable(const ordered_json& list) {
    Table table({{"NAME"}, {"TIME"}, {"ALGORITHMS"}, {"SIGNER"}, {"STATUS"}});
    for (const auto& row : list)
        table.addRow({row["name"], orDash(row["time"]),
                      "RSA" + (row["keySize"].is_null() ? std::string() : " " + row["keySize"].dump()) +
                          ", " + row["digest"].get<std::string>(),
                      orDash(row["signer"]),
                      row["status"].get<std::string>() + " (" + row["code"].dump() + ")"});
    table.print(std::cout, outputIsTerminal());
}

/// What a yes doesn't say.
void printReservations(const JudgedSignature& judged) {
    const std::string name = withoutControlCharacters(toUDEString(judged.signature.getName()));
    if (judged.restsOnClaimedTime)
        std::cout << name
                  << ": the certificate is accepted for the time that the signer claims, not for now\n";
    if (judged.holds)
        for (const std::string& weakness : judged.weaknesses)
            std::cout << name << ": weak: " << withoutControlCharacters(weakness) << '\n';
}

void print(const std::string& package, const SignatureVerdict& verdict, const ordered_json& list) {
    printTable(list);
    if (!list.empty()) {
        std::cout << '\n' << summarize(verdict.getCoverage());
        for (const JudgedSignature& judged : verdict.getSignatures())
            printReservations(judged);
    }
    for (const VerdictReason& reason : verdict.getReasons())
        if (reason.kind == VerdictReason::Kind::NoSignatures)
            std::cout << withoutControlCharacters(package) << " has no signatures\n";
        else if (!reason.leavesOpen())
            std::cout << "No: " << withoutControlCharacters(reason.text) << '\n';
}

/// The reasons that no row of the list shows.
void tellReasonsOfPackage(const std::string& package, const SignatureVerdict& verdict) {
    for (const VerdictReason& reason : verdict.getReasons())
        if (reason.signature.empty() && !reason.leavesOpen())
            tell(package, "no: " + reason.text);
}

bool isUnreadable(const SignatureVerdict& verdict) {
    return !verdict.isYes() && verdict.getReasons().front().kind == VerdictReason::Kind::Unreadable;
}

/// Fails with everything that couldn't be read or checked.
[[noreturn]] void failOpen(const SignatureVerdict& verdict) {
    constexpr std::size_t TOLD = 5; // a small package can have very many bad signatures
    std::string text;
    std::size_t count = 0;
    for (const VerdictReason& reason : verdict.getReasons())
        if (reason.leavesOpen() && ++count <= TOLD)
            text += (count == 1 ? "" : "; ") + reason.text;
    if (count > TOLD)
        text += "; and " + std::to_string(count - TOLD) + " more";
    throw opc::model::InvalidSignature(text, verdict.getReasons().front().code);
}

void verify(const Arguments& arguments) {
    const SignatureVerdict verdict = judge(arguments);
    if (isUnreadable(verdict))
        failOpen(verdict);
    ordered_json list = ordered_json::array();
    for (const JudgedSignature& judged : verdict.getSignatures())
        list.push_back(describe(judged));
    if (arguments.json) {
        std::cout << escapedJSON(list.dump(2)) << '\n';
        tellReasonsOfPackage(arguments.package.path, verdict);
    } else {
        print(arguments.package.path, verdict, list);
    }
    if (verdict.getAnswer() == SignatureVerdict::Answer::CannotTell)
        failOpen(verdict);
    if (!verdict.isYes())
        throw AnswerIsNo();
}

} // namespace

void addVerifyCommand(CLI::App& app) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* command = app.add_subcommand(
        "verify",
        "Check the signatures of a package, and list what no valid signature covers. Exit status:\n"
        "0 all hold, 1 one doesn't hold or there are none, 3 one can't be checked. opctool coverage\n"
        "says which signature covers what");
    addPackage(*command, arguments->package);
    CLI::Option* publicKey =
        command
            ->add_option("--public", arguments->publicKey,
                         "The signer's public RSA key, PEM or DER; certificates are ignored then")
            ->check(CLI::ExistingFile);
    for (CLI::Option* option : addTrustOptions(*command, arguments->trust))
        option->excludes(publicKey);
    addRepeatable(
        command, "--fingerprint", arguments->fingerprints,
        "The SHA-256 fingerprint of a certificate, in hexadecimal digits: this certificate is accepted "
        "unchecked. Without --trust no other certificate is accepted")
        ->check(checkFingerprint)
        ->excludes(publicKey);
    command->add_option("--signature", arguments->signature, "Check only this signature, such as sig1");
    command->add_flag(
        "--require-full", arguments->requireFull,
        "Say no if anything is uncovered, has another content type than when it was signed, or is "
        "ignored although other programs may read it");
    command->add_flag("--json", arguments->json, "Print a JSON array");
    command->callback([arguments] { verify(*arguments); });
}

} // namespace opctool
