#include "Commands.hpp"
#include "CoverageText.hpp"
#include "Files.hpp"
#include "JSONText.hpp"
#include "KeyFiles.hpp"
#include "OpenedPackage.hpp"
#include "RepeatableOption.hpp"
#include "SignedPackage.hpp"
#include "StandardSignatures.hpp"
#include "TerminalText.hpp"
#include "Trust.hpp"

#include <bedrock/codesigning_verifier/FingerprintStore.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/SignaturePolicy.hpp>
#include <opc/model/SignatureVerdict.hpp>
#include <opc/scanning/ResultJSON.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <exception>
#include <memory>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace opctool {

namespace {

using bedrock::codesigning_verifier::FingerprintStore;
using nlohmann::ordered_json;
using opc::toUDEString;
using opc::model::JudgedSignature;
using opc::model::PackageCoverage;
using opc::model::SignaturePolicy;
using opc::model::SignatureVerdict;
using opc::model::VerdictReason;
using opc::scanning::ScannedSignatures;

constexpr const char* COMPLETE = "complete";
constexpr const char* TRUSTED = "trusted";

struct VerifyArguments {
    std::string publicKey;
    Trust trust;
    std::vector<std::string> fingerprints;
    std::string signature;
    bool requireFull = false;
    std::vector<std::string> required;
    bool acceptMissingNull = false;

    bool isRequired(const std::string& what) const {
        return std::find(required.begin(), required.end(), what) != required.end();
    }
};

/// What the command line says about signatures in either profile.
struct Requirements {
    SignaturePolicy own;
    StandardRequirements standard;
};

/// What is found out about a package.
struct Verdict {
    ScannedSignatures found;
    std::optional<PackageCoverage> coverage; ///< of the own signatures; nothing if they couldn't be judged
    bool isStandardFulfilled = true;

    bool isUnsigned() const { return found.own.empty() && found.standard.signatures.empty(); }
    bool leavesOpen() const { return found.state == ScannedSignatures::State::Unreadable; }
    bool isYes() const { return found.reasons.empty() && isStandardFulfilled; }
};

/// The digits of a fingerprint in lower case, without the colons between them.
std::string digitsOf(std::string fingerprint) {
    fingerprint.erase(std::remove(fingerprint.begin(), fingerprint.end(), ':'), fingerprint.end());
    std::transform(fingerprint.begin(), fingerprint.end(), fingerprint.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return fingerprint;
}

std::string checkFingerprint(const std::string& fingerprint) {
    try {
        FingerprintStore().addFingerprint(fingerprint);
        return {};
    } catch (const std::invalid_argument& e) {
        return e.what();
    }
}

SignaturePolicy makeSignerPolicy(const VerifyArguments& arguments) {
    if (!arguments.publicKey.empty())
        return SignaturePolicy::byPublicKey(readAnyPublicKey(arguments.publicKey));
    FingerprintStore fingerprints;
    for (const std::string& fingerprint : arguments.fingerprints)
        fingerprints.addFingerprint(fingerprint);
    if (arguments.trust.files.empty() && !arguments.fingerprints.empty())
        return SignaturePolicy::byFingerprints(fingerprints);
    return SignaturePolicy::byTrust(makeTrustStore(arguments.trust), makeValidationOptions(arguments.trust),
                                    fingerprints);
}

StandardRequirements makeStandardRequirements(const VerifyArguments& arguments) {
    StandardRequirements made;
    made.signature = arguments.signature;
    made.policy.acceptWeak = arguments.trust.acceptWeak;
    made.policy.acceptMissingNull = arguments.acceptMissingNull;
    if (!arguments.required.empty()) {
        made.requiresComplete = arguments.isRequired(COMPLETE);
        made.requiresTrusted = arguments.isRequired(TRUSTED);
    }
    if (arguments.publicKey.empty() && arguments.trust.files.empty() && arguments.fingerprints.empty())
        return made; // nobody is trusted without being asked for
    auto& trust = made.policy.trust.emplace();
    trust.roots = makeTrustStore(arguments.trust);
    trust.validation = makeValidationOptions(arguments.trust);
    for (const std::string& fingerprint : arguments.fingerprints)
        trust.fingerprints.push_back(digitsOf(fingerprint));
    if (!arguments.publicKey.empty())
        trust.publicKeys.push_back(readAnyPublicKey(arguments.publicKey));
    return made;
}

void take(Verdict& verdict, const SignatureVerdict& own) {
    verdict.found.add(own);
    verdict.coverage = own.getCoverage();
}

void addStandard(Verdict& verdict, PackageFile& file, const StandardRequirements& requirements) {
    verdict.found.add(verifyStandard(file, requirements));
    verdict.isStandardFulfilled = fulfils(verdict.found.standard, requirements);
}

Verdict judge(FileRun& run, const VerifyArguments& arguments, const Requirements& requirements) {
    SignedPackage package(run, opc::interfaces::OpenMode::ReadOnly);
    opc::model::DigitalSignatureManager& own = package.signatures();
    Verdict verdict;
    const bool hasStandard = package.hasStandardSignatures();
    std::exception_ptr notFound;
    try {
        take(verdict, arguments.signature.empty()
                          ? own.judge(requirements.own)
                          : own.judge(own.getSignature(fromArgument(arguments.signature)), requirements.own));
    } catch (const opc::model::SignatureNotFound&) {
        if (!hasStandard)
            throw;
        notFound = std::current_exception();
    }
    if (hasStandard)
        addStandard(verdict, package.closeUnchanged(), requirements.standard);
    if (notFound && verdict.isUnsigned())
        std::rethrow_exception(notFound);
    return verdict;
}

/// The signatures in the standard's profile of a package that the model can't open. It was opened before: standard input
/// is used up.
Verdict judgeWithoutModel(FileRun& run, const Requirements& requirements) {
    Verdict verdict;
    PackageFile file(run);
    addStandard(verdict, file, requirements.standard);
    return verdict;
}

Color colorOfStatus(const std::string& status) {
    return status.compare(0, 5, "holds") == 0 ? Color::Green : Color::Red;
}

void printTable(FileRun& run, const ordered_json& list) {
    Table table(
        {{"NAME"}, {"TIME"}, {"ALGORITHMS"}, {"SIGNER"}, {"STATUS", Table::Align::Left, colorOfStatus}});
    for (const auto& row : list)
        table.addRow({row["name"], textOrDash(row["time"]),
                      "RSA" + (row["keySize"].is_null() ? std::string() : " " + row["keySize"].dump()) +
                          ", " + row["digest"].get<std::string>(),
                      textOrDash(row["signer"]),
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

void printOwn(FileRun& run, const Verdict& verdict, const ordered_json& rows) {
    printTable(run, rows);
    if (!rows.empty() && verdict.coverage) {
        run.out() << '\n' << summarize(*verdict.coverage);
        for (const JudgedSignature& judged : verdict.found.own)
            printReservations(run.out(), judged);
    }
    for (const VerdictReason& reason : verdict.found.reasons)
        if (reason.kind == VerdictReason::Kind::NoSignatures)
            run.out() << (run.options().isOneOfMany ? std::string("it")
                                                    : withoutControlCharacters(run.path()))
                      << " has no signatures\n";
        else if (!reason.leavesOpen())
            run.out() << "No: " << withoutControlCharacters(reason.text) << '\n';
}

/// What is the same for programs.
ordered_json describe(const Verdict& verdict) {
    return ordered_json::parse(opc::scanning::toJSON(verdict.found));
}

void print(FileRun& run, const Verdict& verdict) {
    ordered_json own = ordered_json::array();
    ordered_json standard = ordered_json::array();
    ordered_json description = describe(verdict);
    for (ordered_json& row : description["signatures"])
        (row["profile"] == "standard" ? standard : own).push_back(std::move(row));
    if (!standard.empty() || !verdict.found.standard.problems.empty())
        printVerification(run, verdict.found.standard, standard);
    if (!standard.empty() && !own.empty())
        run.out() << "\nSignatures in this library's profile:\n";
    printOwn(run, verdict, own);
}

/// Reasons of the package as a whole, which no row of the list shows.
std::vector<std::string> reasonsOfPackage(const Verdict& verdict) {
    std::vector<std::string> all;
    for (const VerdictReason& reason : verdict.found.reasons)
        if (reason.signature.empty() && !reason.leavesOpen())
            all.push_back(reason.text);
    for (const auto& problem : verdict.found.standard.problems)
        all.push_back(problem.place + ": " + problem.text);
    return all;
}

bool isUnreadable(const Verdict& verdict) {
    return !verdict.found.reasons.empty() &&
           verdict.found.reasons.front().kind == VerdictReason::Kind::Unreadable;
}

/// Fails with everything that couldn't be read or checked.
[[noreturn]] void failOpen(const Verdict& verdict) {
    constexpr std::size_t TOLD = 5; // a small package can have very many bad signatures
    std::string text;
    std::size_t count = 0;
    for (const VerdictReason& reason : verdict.found.reasons)
        if (reason.leavesOpen() && ++count <= TOLD)
            text += (count == 1 ? "" : "; ") + reason.text;
    if (count > TOLD)
        text += "; and " + std::to_string(count - TOLD) + " more";
    throw opc::model::InvalidSignature(text, verdict.found.reasons.front().code);
}

void printJSON(FileRun& run, const Verdict& verdict) {
    const ordered_json description = describe(verdict);
    if (run.hasEnvelope()) {
        run.json().add(description);
        return;
    }
    run.json().add(description["signatures"]);
    for (const std::string& reason : reasonsOfPackage(verdict))
        run.tell("no: " + reason);
}

void printResult(FileRun& run, const Verdict& verdict) {
    if (run.isQuiet())
        return;
    if (run.wantsJSON())
        printJSON(run, verdict);
    else
        print(run, verdict);
}

void report(FileRun& run, const Verdict& verdict) {
    if (isUnreadable(verdict) && verdict.found.standard.signatures.empty() && !run.hasEnvelope())
        failOpen(verdict);
    printResult(run, verdict);
    if (verdict.leavesOpen())
        failOpen(verdict);
    if (!verdict.isYes())
        run.sayNo();
}

void verify(FileRun& run, const VerifyArguments& arguments, const Requirements& requirements) {
    Verdict verdict;
    try {
        verdict = judge(run, arguments, requirements);
    } catch (const opc::Exception&) {
        if (run.isStandardInput())
            throw;
        try {
            verdict = judgeWithoutModel(run, requirements);
        } catch (const opc::Exception&) { // the first failure says more
        }
        if (verdict.found.standard.signatures.empty())
            throw;
        printResult(run, verdict);
        throw;
    }
    report(run, verdict);
}

void declareVerify(CLI::App& command) {
    const auto arguments = std::make_shared<VerifyArguments>();
    const auto files = addFiles(command, VERIFY);
    CLI::Option* publicKey =
        command
            .add_option("--public", arguments->publicKey,
                        "The signer's public key, PEM or DER; certificates are ignored then")
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
    addRepeatable(
        &command, "--require", arguments->required,
        "What must be true beside valid cryptography, in the standard's profile: complete, trusted; the "
        "default is both. complete is --require-full in the library's own profile")
        ->delimiter(',')
        ->check(CLI::IsMember({COMPLETE, TRUSTED}))
        ->type_name("LIST");
    command
        .add_option("--time", arguments->trust.time,
                    "When certificates must be valid, such as 2024-02-29; now is the present time. Without "
                    "this option "
                    "it is now, in the library's own profile the time that the signer claims. A trusted time "
                    "stamp of the signature goes before it")
        ->check(checkTime)
        ->type_name("TIME");
    command.add_flag("--accept-missing-null", arguments->acceptMissingNull,
                     "Accept RSA values without a NULL that others require, which some programs made; in the "
                     "standard's profile");
    command.callback([files, arguments] {
        fromArgument(arguments->signature);
        const Requirements requirements{
            makeSignerPolicy(*arguments)
                .acceptWeak(arguments->trust.acceptWeak)
                .requireFull(arguments->requireFull || arguments->isRequired(COMPLETE)),
            makeStandardRequirements(*arguments)};
        std::atomic<bool> isAnswered = false;
        files->run([&](FileRun& run) {
            isAnswered = true;
            verify(run, *arguments, requirements);
        });
        if (!isAnswered) // of no package it can't be said that its signatures hold
            throw EndsWith{ANSWER_IS_NO};
    });
}

} // namespace

const Command VERIFY{
    "verify",
    "Check the signatures of a package, and list what no valid signature covers",
    declareVerify,
    "In the standard's profile, in which office programs sign, each signature gets three answers: "
    "whether the cryptography is valid, what it covers, and whether its signer is trusted. Without "
    "--trust, --fingerprint or --public nobody is trusted there. In the library's own profile the "
    "system's certificates are trusted without --trust. opctool coverage says which signature covers "
    "what.",
    "opctool verify report.docx --public signer.pub --require-full\n"
    "opctool verify -r folder --trust roots.pem --jsonl\n"
    "opctool verify report.docx --trust system --require complete,trusted",
    "0 all hold, 1 one doesn't hold or there are none, 3 one can't be checked",
    R"({
  "type": "object",
  "required": ["state", "yes", "signatures", "reasons"],
  "properties": {
    "state": {
      "description": "holds: yes; broken: a signature doesn't hold; unproven: nothing signed has changed, and that is no yes",
      "enum": ["holds", "broken", "unproven", "unsigned", "unreadable"]
    },
    "yes": {
      "description": "the signatures in the standard's profile are valid, complete and trusted, those in the library's own hold",
      "type": "boolean"
    },
    "signatures": {
      "type": "array",
      "items": {
        "type": "object",
        "required": ["name", "time", "digest", "keySize", "signer", "fingerprint", "status", "code", "holds", "reason",
                     "weak", "restsOnClaimedTime", "profile"],
        "properties": {
          "name": {"type": "string"},
          "time": {"description": "as the signer claims", "type": ["string", "null"]},
          "digest": {"type": "string"},
          "keySize": {"type": ["integer", "null"]},
          "signer": {"type": ["string", "null"]},
          "fingerprint": {"type": ["string", "null"]},
          "status": {"type": "string"},
          "code": {"description": "null in the standard's profile", "type": ["integer", "null"]},
          "holds": {"description": "in the standard's profile the same as yes", "type": "boolean"},
          "reason": {"type": "string"},
          "weak": {"type": "array", "items": {"type": "string"}},
          "restsOnClaimedTime": {"type": "boolean"},
          "profile": {"enum": ["opcmodel", "standard"]},
          "part": {"description": "this and what follows: in the standard's profile", "type": "string"},
          "cryptography": {
            "type": "object",
            "required": ["answer", "reasons", "referenceCount", "references"],
            "properties": {
              "answer": {"enum": ["valid", "weak", "broken"]},
              "reasons": {"type": "array", "items": {"type": "string"}},
              "referenceCount": {"type": "integer"},
              "references": {
                "description": "of all signatures together the first 10000",
                "type": "array",
                "items": {
                  "type": "object",
                  "required": ["uri", "digest", "holds", "reason"],
                  "properties": {
                    "uri": {"type": "string"}, "digest": {"type": "string"}, "holds": {"type": "boolean"},
                    "reason": {"type": "string"}
                  }
                }
              }
            }
          },
          "coverage": {
            "type": "object",
            "required": ["answer", "signedParts", "signedRelationships", "externalTargets", "unsignedCount", "unsigned",
                         "byCustom"],
            "properties": {
              "answer": {"enum": ["complete", "partial"]},
              "signedParts": {"type": "integer"},
              "signedRelationships": {"type": "integer"},
              "externalTargets": {"description": "signed relationships that lead out of the package", "type": "integer"},
              "unsignedCount": {"type": "integer"},
              "unsigned": {
                "description": "the first 1000",
                "type": "array",
                "items": {
                  "type": "object",
                  "required": ["kind", "place", "id", "type", "text"],
                  "properties": {
                    "kind": {"enum": ["part", "content type", "relationship", "item", "main document"]},
                    "place": {"type": "string"}, "id": {"type": ["string", "null"]}, "type": {"type": ["string", "null"]},
                    "text": {"type": "string"}
                  }
                }
              },
              "byCustom": {
                "description": "what signing programs leave out, the first 1000",
                "$ref": "#/properties/result/properties/signatures/items/properties/coverage/properties/unsigned"
              }
            }
          },
          "trust": {
            "type": "object",
            "required": ["answer", "reason", "time", "timeFrom", "timeStampFailure"],
            "properties": {
              "answer": {"enum": ["not checked", "unknown", "trusted", "not trusted"]},
              "reason": {"type": "string"},
              "time": {"description": "at which the certificate must be valid; null is now", "type": ["string", "null"]},
              "timeFrom": {"enum": ["now", "caller", "time stamp"]},
              "timeStampFailure": {"type": "string"}
            }
          },
          "yes": {"description": "valid, complete and trusted", "type": "boolean"}
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
