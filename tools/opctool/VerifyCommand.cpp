#include "Commands.hpp"
#include "KeyFiles.hpp"
#include "OpenedPackage.hpp"
#include "RepeatableOption.hpp"
#include "SignedPackage.hpp"
#include "SigningMaterial.hpp"
#include "Table.hpp"
#include "TerminalText.hpp"
#include "Trust.hpp"

#include <bedrock/codesigning_verifier/FingerprintStore.hpp>
#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/Errors.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <exception>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace opctool {

namespace {

using bedrock::codesigning_verifier::FingerprintStore;
using nlohmann::ordered_json;
using opc::toUDEString;
using opc::model::DigitalSignature;
using opc::model::DigitalSignatureManager;
using opc::model::SignatureMethod;

/// The type of the relationship by which office programs' signatures are found, in a form that isn't read.
constexpr const char16_t* FOREIGN_ORIGIN =
    u"http://schemas.openxmlformats.org/package/2006/relationships/digital-signature/origin";

constexpr int HOLDS = 0;
constexpr int NOT_TRUSTED = 5;

/// The codes of a verification in words; docs/errors.md says more of each.
std::string inWords(int code) {
    struct Meaning {
        int code;
        const char* words;
    };
    static constexpr Meaning MEANINGS[] = {
        {HOLDS, "holds"},
        {1, "signature value is wrong"},
        {2, "signature value is wrong"},
        {3, "certificate has expired"},
        {4, "certificate isn't valid yet"},
        {NOT_TRUSTED, "signer isn't trusted"},
        {6, "signer isn't trusted"},
        {7, "certificate isn't for signing"},
        {8, "certificate chain is wrong"},
        {9, "signer is unknown: no certificate"},
        {10, "certificate is revoked"},
        {11, "certificate is too weak"},
        {16, "certificate is forged"},
        {19, "no revocation list covers the certificate"},
        {101, "content changed"},
    };
    const auto* const found = std::find_if(std::begin(MEANINGS), std::end(MEANINGS),
                                           [code](const Meaning& meaning) { return meaning.code == code; });
    return found == std::end(MEANINGS) ? "doesn't hold" : found->words;
}

struct Arguments {
    std::string package;
    std::string publicKey;
    Trust trust;
    std::vector<std::string> fingerprints;
    std::string signature;
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

/// What signatures are checked by.
class Verifier {
public:
    explicit Verifier(const Arguments& arguments)
        : options(makeValidationOptions(arguments.trust)), trustStore(makeTrustStore(arguments.trust)),
          byFingerprintAlone(arguments.trust.files.empty() && !arguments.fingerprints.empty()) {
        if (!arguments.publicKey.empty())
            publicKey = readPublicKey(arguments.publicKey)->getAsByteArray();
        for (const std::string& fingerprint : arguments.fingerprints)
            fingerprints.addFingerprint(fingerprint);
    }

    /// @return the code of the verification
    int verify(DigitalSignatureManager& signatures, const DigitalSignature& signature) const {
        if (!publicKey.empty())
            return signatures.verifySignature(signature, publicKey).getErrorCode().value();
        const int code =
            signatures.verifySignature(signature, fingerprints, options, trustStore).getErrorCode().value();
        // An empty trust store stands for the system's, and whoever names fingerprints means them alone.
        if (code == HOLDS && byFingerprintAlone &&
            !fingerprints.hasFingerprint(signature.getCertificate().getSHA256Fingerprint()))
            return NOT_TRUSTED;
        return code;
    }

private:
    std::vector<unsigned char> publicKey;
    FingerprintStore fingerprints;
    bedrock::certificates::CertificateValidationOptions options;
    bedrock::certificates::TrustStore trustStore;
    bool byFingerprintAlone;
};

ordered_json describe(const DigitalSignature& signature) {
    ordered_json row{{"name", toUDEString(signature.getName())},
                     {"time", nullptr},
                     {"digest", nameOf(signature.getSignatureParams().getDigestMethod())},
                     {"keySize", nullptr},
                     {"signer", "key"},
                     {"fingerprint", nullptr}};
    if (!signature.getSignedTime().is_special())
        row["time"] = toUDEString(opc::convertTimeToString(signature.getSignedTime()));
    const SignatureMethod method = signature.getSignatureParams().getSignatureMethod();
    if (method != SignatureMethod::NoKey)
        row["keySize"] = opc::model::signatureMethodToKeySize(method);
    const auto certificate = signature.getCertificate();
    if (!certificate.empty()) {
        row["signer"] = certificate.getSubject();
        row["fingerprint"] = certificate.getSHA256Fingerprint();
    }
    return row;
}

void print(const ordered_json& list) {
    Table table({{"NAME"}, {"TIME"}, {"ALGORITHMS"}, {"SIGNER"}, {"STATUS"}});
    for (const auto& row : list)
        table.addRow({row["name"], row["time"].is_null() ? std::string("-") : row["time"].get<std::string>(),
                      "RSA" + (row["keySize"].is_null() ? std::string() : " " + row["keySize"].dump()) +
                          ", " + row["digest"].get<std::string>(),
                      row["signer"], row["status"].get<std::string>() + " (" + row["code"].dump() + ")"});
    table.print(std::cout, outputIsTerminal());
}

/// What comes of the signatures: all are tried, also if one of them can't be checked.
struct Outcome {
    ordered_json list = ordered_json::array();
    bool allHold = true;
    std::exception_ptr failure; ///< of the first that couldn't be checked
};

void verifyOne(const Verifier& verifier, DigitalSignatureManager& signatures,
               const DigitalSignature& signature, Outcome& outcome) {
    ordered_json row = describe(signature);
    try {
        const int code = verifier.verify(signatures, signature);
        outcome.allHold = outcome.allHold && code == HOLDS;
        row["status"] = inWords(code);
        row["code"] = code;
    } catch (const opc::model::InvalidSignature& e) {
        if (!outcome.failure)
            outcome.failure = std::current_exception();
        row["status"] = "can't be checked";
        row["code"] = e.getErrorCode().value();
    }
    outcome.list.push_back(std::move(row));
}

Outcome verifyAll(const Arguments& arguments) {
    const Verifier verifier(arguments);
    SignedPackage package(arguments.package, opc::interfaces::OpenMode::ReadOnly);
    DigitalSignatureManager& signatures = package.signatures();
    Outcome outcome;
    if (!arguments.signature.empty())
        verifyOne(verifier, signatures, signatures.getSignature(fromArgument(arguments.signature)), outcome);
    else
        for (const DigitalSignature& signature : signatures.getSignatures())
            verifyOne(verifier, signatures, signature, outcome);
    if (arguments.signature.empty() && !outcome.failure &&
        !package->getRelationshipsByType(FOREIGN_ORIGIN).empty())
        outcome.failure = std::make_exception_ptr(opc::Exception(
            arguments.package + " has signatures in a form that isn't read: they can't be checked"));
    return outcome;
}

void verify(const Arguments& arguments) {
    const Outcome outcome = verifyAll(arguments);
    if (arguments.json)
        std::cout << escapedJSON(outcome.list.dump(2)) << '\n';
    else if (outcome.list.empty() && !outcome.failure)
        std::cout << withoutControlCharacters(arguments.package) << " has no signatures\n";
    else if (!outcome.list.empty())
        print(outcome.list);
    if (outcome.failure)
        std::rethrow_exception(outcome.failure);
    if (outcome.list.empty() || !outcome.allHold)
        throw AnswerIsNo();
}

} // namespace

void addVerifyCommand(CLI::App& app) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* command = app.add_subcommand(
        "verify", "Check the signatures of a package. Exit status: 0 all hold, 1 one doesn't or there are\n"
                  "none, 3 one can't be checked. What they protect, opctool coverage says");
    command->add_option("PACKAGE", arguments->package, "The package's file")->required();
    CLI::Option* publicKey =
        command
            ->add_option("--public", arguments->publicKey,
                         "The signer's public RSA key, PEM or DER; no certificate is looked at then")
            ->check(CLI::ExistingFile);
    for (CLI::Option* option : addTrustOptions(*command, arguments->trust))
        option->excludes(publicKey);
    addRepeatable(command, "--fingerprint", arguments->fingerprints,
                  "SHA-256, hexadecimal: the certificate with it is accepted as it is; without --trust it "
                  "alone is")
        ->check(checkFingerprint)
        ->excludes(publicKey);
    command->add_option("--signature", arguments->signature, "Check that one alone, such as sig1");
    command->add_flag("--json", arguments->json, "Print a JSON array");
    command->callback([arguments] { verify(*arguments); });
}

} // namespace opctool
