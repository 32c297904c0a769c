#include "StandardSignatures.hpp"

#include "FileRun.hpp"
#include "JSONText.hpp"
#include "PackageFile.hpp"
#include "TerminalText.hpp"

#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace opctool {

namespace {

using namespace opc::standard_signatures;
using nlohmann::ordered_json;

constexpr std::size_t TOLD_GAPS = 20; ///< gaps of a signature, in text
constexpr std::size_t LISTED = 1000;  ///< in JSON

const char* nameOf(CryptographyAnswer::Status status) {
    constexpr std::array NAMES{"valid", "weak", "broken"};
    return NAMES.at(static_cast<std::size_t>(status));
}

const char* nameOf(TrustAnswer::Status status) {
    constexpr std::array NAMES{"not checked", "unknown", "trusted", "not trusted"};
    return NAMES.at(static_cast<std::size_t>(status));
}

const char* nameOf(TrustAnswer::TimeFrom from) {
    constexpr std::array NAMES{"now", "caller", "time stamp"};
    return NAMES.at(static_cast<std::size_t>(from));
}

const char* nameOf(Unsigned::Kind kind) {
    constexpr std::array NAMES{"part", "content type", "relationship", "item", "main document"};
    return NAMES.at(static_cast<std::size_t>(kind));
}

const char* nameOf(const CoverageAnswer& coverage) {
    return coverage.isComplete() ? "complete" : "partial";
}

/// In one word for each answer.
std::string statusOf(const VerifiedSignature& signature) {
    return std::string(nameOf(signature.cryptography.status)) + ", " + nameOf(signature.coverage) + ", " +
           nameOf(signature.trust.status);
}

std::string placeOf(const Unsigned& one) {
    return one.id.empty() ? one.place : one.place + "#" + one.id;
}

ordered_json describe(const CryptographyAnswer& answer) {
    ordered_json references = ordered_json::array();
    for (const CheckedReference& one : answer.references)
        references.push_back({{"uri", one.uri},
                              {"digest", one.digest},
                              {"holds", !one.wrong},
                              {"reason", one.wrong ? one.wrong->text : std::string()}});
    ordered_json reasons = ordered_json::array();
    for (const Reason& reason : answer.reasons)
        reasons.push_back(reason.text);
    return {{"answer", nameOf(answer.status)}, {"reasons", reasons}, {"references", references}};
}

ordered_json describe(const std::vector<Unsigned>& all) {
    ordered_json list = ordered_json::array();
    for (const Unsigned& one : all) {
        if (list.size() == LISTED)
            break;
        list.push_back({{"kind", nameOf(one.kind)},
                        {"place", one.place},
                        {"id", textOrNull(one.id)},
                        {"type", textOrNull(one.type)},
                        {"text", one.text}});
    }
    return list;
}

ordered_json describe(const CoverageAnswer& answer) {
    return {{"answer", nameOf(answer)},
            {"signedParts", answer.signedParts},
            {"signedRelationships", answer.signedRelationships},
            {"externalTargets", answer.externalTargets},
            {"unsignedCount", answer.gapCount},
            {"unsigned", describe(answer.gaps)},
            {"byCustom", describe(answer.byCustom)}};
}

ordered_json describe(const TrustAnswer& answer) {
    ordered_json row{{"answer", nameOf(answer.status)},
                     {"reason", answer.reason},
                     {"time", nullptr},
                     {"timeFrom", nameOf(answer.timeFrom)},
                     {"timeStampFailure", answer.timeStampFailure}};
    if (answer.time)
        row["time"] = opc::toUDEString(opc::convertTimeToString(*answer.time));
    return row;
}

std::vector<std::string> weaknessesOf(const CryptographyAnswer& answer) {
    std::vector<std::string> all;
    for (const Reason& reason : answer.reasons)
        if (reason.code == Reason::Code::WeakAlgorithm)
            all.push_back(reason.text);
    return all;
}

Color colorOfAnswer(const std::string& answer) {
    const bool isGood = answer == "valid" || answer == "complete" || answer == "trusted";
    return isGood ? Color::Green : Color::Red;
}

void printTable(FileRun& run, const PackageVerification& verification) {
    Table table({{"NAME"},
                 {"CLAIMED TIME"},
                 {"ALGORITHMS"},
                 {"SIGNER"},
                 {"CRYPTOGRAPHY", Table::Align::Left, colorOfAnswer},
                 {"COVERAGE", Table::Align::Left, colorOfAnswer},
                 {"TRUST", Table::Align::Left, colorOfAnswer}});
    for (const VerifiedSignature& one : verification.signatures) {
        const ordered_json row = describeSignature(one);
        table.addRow(
            {one.name, textOrDash(row["time"]),
             one.cryptography.method.empty()
                 ? "-"
                 : one.cryptography.method + ", " + std::to_string(one.cryptography.keyBits) + " bits",
             textOrDash(row["signer"]), nameOf(one.cryptography.status), nameOf(one.coverage),
             nameOf(one.trust.status)});
    }
    table.print(run.out(), run.tableStyle());
}

/// What a yes doesn't say.
void printReservations(FileRun& run, const VerifiedSignature& signature) {
    const std::string name = withoutControlCharacters(signature.name);
    if (!signature.coverage.byCustom.empty())
        run.out() << name
                  << ": not signed by custom: properties and thumbnail, with title, author and dates\n";
    if (signature.coverage.externalTargets != 0)
        run.out() << name << ": " << signature.coverage.externalTargets
                  << " signed relationships lead out of the package, where everything can change\n";
}

} // namespace

PackageVerification verifyStandard(PackageFile& file, const StandardRequirements& requirements) {
    PackageVerification verification;
    file.readAsItLies(
        [&](opc::interfaces::IPhysicalPackage& store) { verification = verify(store, requirements.policy); });
    if (requirements.signature.empty())
        return verification;
    auto& all = verification.signatures;
    all.erase(std::remove_if(all.begin(), all.end(),
                             [&requirements](const VerifiedSignature& one) {
                                 return one.name != requirements.signature &&
                                        one.part != requirements.signature;
                             }),
              all.end());
    return verification;
}

bool fulfils(const PackageVerification& verification, const StandardRequirements& requirements) {
    const auto fulfilsAll = [&requirements](const VerifiedSignature& one) {
        const auto status = one.cryptography.status;
        const bool isGood = status == CryptographyAnswer::Status::Valid ||
                            (status == CryptographyAnswer::Status::Weak && requirements.policy.acceptWeak);
        return isGood && (!requirements.requiresComplete || one.coverage.isComplete()) &&
               (!requirements.requiresTrusted || one.trust.status == TrustAnswer::Status::Trusted);
    };
    return verification.problems.empty() &&
           std::all_of(verification.signatures.begin(), verification.signatures.end(), fulfilsAll);
}

ordered_json describeSignature(const VerifiedSignature& signature) {
    const std::vector<std::string> reasons = reasonsOf(signature);
    ordered_json row{{"name", signature.name},
                     {"part", signature.part},
                     {"time", textOrNull(signature.claimedTime)},
                     {"digest", signature.cryptography.method},
                     {"keySize", signature.cryptography.keyBits},
                     {"signer", nullptr},
                     {"fingerprint", nullptr},
                     {"status", statusOf(signature)},
                     {"code", nullptr},
                     {"holds", signature.cryptography.status != CryptographyAnswer::Status::Broken},
                     {"reason", reasons.empty() ? std::string() : reasons.front()},
                     {"weak", weaknessesOf(signature.cryptography)},
                     {"restsOnClaimedTime", false},
                     {"profile", "standard"},
                     {"cryptography", describe(signature.cryptography)},
                     {"coverage", describe(signature.coverage)},
                     {"trust", describe(signature.trust)},
                     {"yes", signature.isYes}};
    if (!signature.trust.signer.empty()) {
        row["signer"] = signature.trust.signer.getSubject();
        row["fingerprint"] = signature.trust.signer.getSHA256Fingerprint();
    } else if (signature.trust.evidence == TrustAnswer::Evidence::PublicKey) {
        row["signer"] = "key";
    }
    return row;
}

std::vector<std::string> reasonsOf(const VerifiedSignature& signature) {
    std::vector<std::string> all;
    for (const Reason& reason : signature.cryptography.reasons)
        all.push_back((reason.code == Reason::Code::WeakAlgorithm ? "weak: " : "broken: ") + reason.text);
    for (const CheckedReference& one : signature.cryptography.references)
        if (one.wrong)
            all.push_back("broken: " + one.uri.substr(0, one.uri.find('?')) + ": " + one.wrong->text);
    if (signature.cryptography.status != CryptographyAnswer::Status::Broken) {
        for (const Unsigned& gap : signature.coverage.gaps)
            all.push_back("partial: " + placeOf(gap) + ": " + gap.text);
        if (signature.coverage.signedParts == 0)
            all.emplace_back("partial: it signs no part of the content");
        if (!signature.trust.reason.empty())
            all.push_back(std::string(nameOf(signature.trust.status)) + ": " + signature.trust.reason);
    }
    return all;
}

void printVerification(FileRun& run, const PackageVerification& verification) {
    run.out() << "Signatures in the standard's profile:\n";
    printTable(run, verification);
    run.out() << '\n';
    for (const VerifiedSignature& signature : verification.signatures) {
        const std::vector<std::string> reasons = reasonsOf(signature);
        for (std::size_t i = 0; i < std::min(reasons.size(), TOLD_GAPS); ++i)
            run.out() << withoutControlCharacters(signature.name + ": " + reasons[i]) << '\n';
        if (reasons.size() > TOLD_GAPS)
            run.out() << withoutControlCharacters(signature.name) << ": and " << reasons.size() - TOLD_GAPS
                      << " more\n";
        printReservations(run, signature);
    }
    for (const Reason& problem : verification.problems)
        run.out() << withoutControlCharacters("No: " + problem.place + ": " + problem.text) << '\n';
}

} // namespace opctool
