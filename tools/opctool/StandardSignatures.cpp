#include "StandardSignatures.hpp"

#include "FileRun.hpp"
#include "JSONText.hpp"
#include "PackageFile.hpp"
#include "TerminalText.hpp"

#include <opc/scanning/Result.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace opctool {

namespace {

using namespace opc::standard_signatures;
using nlohmann::ordered_json;

constexpr std::size_t TOLD_GAPS = 20; ///< gaps of a signature

Color colorOfAnswer(const std::string& answer) {
    const bool isGood = answer == "valid" || answer == "complete" || answer == "trusted";
    return isGood ? Color::Green : Color::Red;
}

/// The claim of the signer; any other text could look like more of the table.
std::string claimedTimeOf(const VerifiedSignature& signature) {
    constexpr std::size_t LONGEST = 40;
    const std::string& claim = signature.claimedTime;
    const bool isTime =
        claim.size() <= LONGEST && claim.find_first_not_of("0123456789-+:.TZ") == std::string::npos;
    return claim.empty() || !isTime ? "-" : claim;
}

void printTable(FileRun& run, const PackageVerification& verification, const ordered_json& rows) {
    Table table({{"NAME"},
                 {"CLAIMED TIME"},
                 {"ALGORITHMS"},
                 {"SIGNER"},
                 {"CRYPTOGRAPHY", Table::Align::Left, colorOfAnswer},
                 {"COVERAGE", Table::Align::Left, colorOfAnswer},
                 {"TRUST", Table::Align::Left, colorOfAnswer}});
    auto row = rows.begin();
    for (const VerifiedSignature& one : verification.signatures) {
        table.addRow({one.name, claimedTimeOf(one),
                      one.cryptography.method.empty()
                          ? "-"
                          : one.cryptography.method +
                                (one.cryptography.keyBits == 0
                                     ? std::string()
                                     : ", " + std::to_string(one.cryptography.keyBits) + " bits"),
                      textOrDash((*row)["signer"]), (*row)["cryptography"]["answer"],
                      (*row)["coverage"]["answer"], (*row)["trust"]["answer"]});
        ++row;
    }
    table.print(run.out(), run.tableStyle());
}

/// The parts that aren't signed by custom; where all are signed, the relationships to them.
void printByCustom(FileRun& run, const std::string& name, const std::vector<Unsigned>& byCustom) {
    std::string parts;
    std::string relationships;
    for (const Unsigned& one : byCustom) {
        const bool isPart = one.kind == Unsigned::Kind::Part;
        std::string& list = isPart ? parts : relationships;
        list += (list.empty() ? "" : ", ") + one.place + (isPart ? "" : "#" + one.id);
    }
    if (!byCustom.empty())
        run.out()
            << name
            << ": not signed by custom: " << withoutControlCharacters(parts.empty() ? relationships : parts)
            << ". What stands there, such as title, author and dates, can change, also where the document "
               "shows it\n";
}

/// What a yes doesn't say.
void printReservations(FileRun& run, const VerifiedSignature& signature) {
    const std::string name = withoutControlCharacters(signature.name);
    if (signature.cryptography.status == CryptographyAnswer::Status::Broken)
        return;
    if (!signature.trust.timeStampFailure.empty())
        run.out() << withoutControlCharacters(signature.name + ": the time stamp isn't trusted: " +
                                              signature.trust.timeStampFailure)
                  << '\n';
    printByCustom(run, name, signature.coverage.byCustom);
    if (const std::size_t targets = signature.coverage.externalTargets)
        run.out() << name << ": " << targets
                  << (targets == 1 ? " signed relationship leads" : " signed relationships lead")
                  << " out of the package, where everything can change\n";
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

void printVerification(FileRun& run, const PackageVerification& verification, const ordered_json& rows) {
    run.out() << "Signatures in the standard's profile:\n";
    printTable(run, verification, rows);
    run.out() << '\n';
    for (const VerifiedSignature& signature : verification.signatures) {
        const std::vector<std::string> reasons = opc::scanning::reasonsOf(signature);
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
