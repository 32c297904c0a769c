#include "Commands.hpp"
#include "CoverageText.hpp"
#include "Files.hpp"
#include "KeyFiles.hpp"
#include "OpenedPackage.hpp"
#include "RepeatableOption.hpp"
#include "SignedPackage.hpp"
#include "SigningMaterial.hpp"
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

#include <algorithm>
#include <memory>
#include <ostream>
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
    std::string publicKey;
    Trust trust;
    std::vector<std::string> fingerprints;
    std::string signature;
    bool requireFull = false;
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

SignatureVerdict judge(FileRun& run, const Arguments& arguments, const SignaturePolicy& policy) {
    SignedPackage package(run, opc::interfaces::OpenMode::ReadOnly);
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

Color colorOfStatus(const std::string& status) {
    return status.compare(0, 5, "holds") == 0 ? Color::Green : Color::Red;
}

void printTable(FileRun& run, const ordered_json& list) {
    Table table(
        {{"NAME"}, {"TIME"}, {"ALGORITHMS"}, {"SIGNER"}, {"STATUS", Table::Align::Left, colorOfStatus}});
    for (const auto& row : list)
        table.addRow({row["name"], orDash(row["time"]),
                      "RSA" + (row["keySize"].is_null() ? std::string() : " " + row["keySize"].dump()) +
                          ", " + row["digest"].get<std::string>(),
                      orDash(row["signer"]),
                      row["status"].get<std::string>() + " (" + row["code"].dump() + ")"});
    table.print(run.out(), run.tableStyle());
}

/// What a yes doesn't say.
void printReservations(std::ostream& out, const JudgedSignature& judged) {
    const std::string name = withoutControlCharacters(toUDEString(judged.signature.getName()));
    if (judged.restsOnClaimedTime)
        out << name << ": the certificate is accepted for the time that the signer claims, not for now\n";
    if (judged.holds)
        for (const std::string& weakness : judged.weaknesses)
            out << name << ": weak: " << withoutControlCharacters(weakness) << '\n';
}

void print(FileRun& run, const SignatureVerdict& verdict, const ordered_json& list) {
    printTable(run, list);
    if (!list.empty()) {
        run.out() << '\n' << summarize(verdict.getCoverage());
        for (const JudgedSignature& judged : verdict.getSignatures())
            printReservations(run.out(), judged);
    }
    for (const VerdictReason& reason : verdict.getReasons())
        if (reason.kind == VerdictReason::Kind::NoSignatures)
            run.out() << (run.options().isOneOfMany ? std::string("it")
                                                    : withoutControlCharacters(run.path()))
                      << " has no signatures\n";
        else if (!reason.leavesOpen())
            run.out() << "No: " << withoutControlCharacters(reason.text) << '\n';
}

/// The reasons that no row of the list shows.
void tellReasonsOfPackage(FileRun& run, const SignatureVerdict& verdict) {
    for (const VerdictReason& reason : verdict.getReasons())
        if (reason.signature.empty() && !reason.leavesOpen())
            run.tell("no: " + reason.text);
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

const char* stateOf(const SignatureVerdict& verdict) {
    const auto& signatures = verdict.getSignatures();
    switch (verdict.getAnswer()) {
    case SignatureVerdict::Answer::Yes:
        return "holds";
    case SignatureVerdict::Answer::CannotTell:
        return "unreadable";
    default:
        break;
    }
    if (signatures.empty())
        return "unsigned";
    const bool allHold = std::all_of(signatures.begin(), signatures.end(),
                                     [](const JudgedSignature& judged) { return judged.holds; });
    return allHold ? "holds" : "broken"; // if all hold, more was required
}

void printJSON(FileRun& run, const SignatureVerdict& verdict, const ordered_json& list) {
    if (!run.hasEnvelope()) {
        run.json().add(list);
        tellReasonsOfPackage(run, verdict);
        return;
    }
    ordered_json reasons = ordered_json::array();
    for (const VerdictReason& reason : verdict.getReasons())
        reasons.push_back(
            {{"signature",
              reason.signature.empty() ? ordered_json() : ordered_json(toUDEString(reason.signature))},
             {"text", reason.text}});
    run.json().add({{"state", stateOf(verdict)}, {"signatures", list}, {"reasons", reasons}});
}

void verify(FileRun& run, const Arguments& arguments, const SignaturePolicy& policy) {
    const SignatureVerdict verdict = judge(run, arguments, policy);
    if (isUnreadable(verdict) && !run.hasEnvelope())
        failOpen(verdict);
    ordered_json list = ordered_json::array();
    for (const JudgedSignature& judged : verdict.getSignatures())
        list.push_back(describe(judged));
    if (run.wantsJSON())
        printJSON(run, verdict, list);
    else
        print(run, verdict, list);
    if (verdict.getAnswer() == SignatureVerdict::Answer::CannotTell)
        failOpen(verdict);
    if (!verdict.isYes())
        run.sayNo();
}

void declare(CLI::App& command) {
    const auto arguments = std::make_shared<Arguments>();
    const auto files = addFiles(command, VERIFY);
    CLI::Option* publicKey =
        command
            .add_option("--public", arguments->publicKey,
                        "The signer's public RSA key, PEM or DER; certificates are ignored then")
            ->check(CLI::ExistingFile)
            ->type_name("FILE");
    for (CLI::Option* option : addTrustOptions(command, arguments->trust))
        option->excludes(publicKey);
    addRepeatable(
        &command, "--fingerprint", arguments->fingerprints,
        "The SHA-256 fingerprint of a certificate, in hexadecimal digits: this certificate is accepted "
        "unchecked. Without --trust no other certificate is accepted")
        ->check(checkFingerprint)
        ->excludes(publicKey)
        ->type_name("HEX");
    command.add_option("--signature", arguments->signature, "Check only this signature, such as sig1")
        ->type_name("NAME");
    command.add_flag(
        "--require-full", arguments->requireFull,
        "Say no if anything is uncovered, has another content type than when it was signed, or is "
        "ignored although other programs may read it");
    command.callback([files, arguments] {
        fromArgument(arguments->signature);
        const SignaturePolicy policy = makeSignerPolicy(*arguments)
                                           .acceptWeak(arguments->trust.acceptWeak)
                                           .requireFull(arguments->requireFull);
        files->run([&](FileRun& run) { verify(run, *arguments, policy); });
    });
}

} // namespace

const Command VERIFY{"verify",
                     "Check the signatures of a package, and list what no valid signature covers",
                     declare,
                     "opctool coverage says which signature covers what.",
                     "opctool verify report.docx --public signer.pub --require-full\n"
                     "opctool verify -r folder --trust roots.pem --jsonl",
                     "0 all hold, 1 one doesn't hold or there are none, 3 one can't be checked",
                     R"({
  "type": "object",
  "required": ["state", "signatures", "reasons"],
  "properties": {
    "state": {
      "description": "holds: all signatures hold; the exit status is 1 all the same if more is required",
      "enum": ["holds", "broken", "unsigned", "unreadable"]
    },
    "signatures": {
      "type": "array",
      "items": {
        "type": "object",
        "required": ["name", "time", "digest", "keySize", "signer", "fingerprint", "status", "code", "holds", "reason",
                     "weak", "restsOnClaimedTime"],
        "properties": {
          "name": {"type": "string"},
          "time": {"description": "as the signer claims", "type": ["string", "null"]},
          "digest": {"type": "string"},
          "keySize": {"type": ["integer", "null"]},
          "signer": {"type": ["string", "null"]},
          "fingerprint": {"type": ["string", "null"]},
          "status": {"type": "string"},
          "code": {"type": "integer"},
          "holds": {"type": "boolean"},
          "reason": {"type": "string"},
          "weak": {"type": "array", "items": {"type": "string"}},
          "restsOnClaimedTime": {"type": "boolean"}
        }
      }
    },
    "reasons": {
      "description": "why the answer isn't yes",
      "type": "array",
      "items": {
        "type": "object",
        "required": ["signature", "text"],
        "properties": {
          "signature": {"description": "null if it is about the package", "type": ["string", "null"]},
          "text": {"type": "string"}
        }
      }
    }
  }
})"};

} // namespace opctool
