#include "OwnSigning.hpp"

#include "FileRun.hpp"
#include "OpenedPackage.hpp"
#include "SignatureAdditions.hpp"
#include "SignedPackage.hpp"
#include "SigningProfile.hpp"
#include "SigningResult.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/PackageCoverage.hpp>

#include <algorithm>
#include <optional>
#include <utility>

namespace opctool {

namespace {

using opc::model::DigitalSignature;
using opc::model::DigitalSignatureManager;
using opc::model::ExcludeMode;
using opc::model::Package;
using opc::model::PackageCoverage;
using opc::model::Part;
using opc::model::PartName;
using opc::model::Relationship;
using opc::model::RelationshipSelector;
using opc::model::RelationshipSelectorType;
using opc::model::RelationshipSource;
using opc::model::URI;

/// What is to be signed.
struct Selection {
    std::vector<PartName> parts;
    std::vector<RelationshipSelector> selectors;
};

/// Everything except the signatures themselves; relationships are selected by their types.
Selection selectAll(const Package& package) {
    Selection selection;
    const auto select = [&selection](const RelationshipSource& source) {
        std::vector<std::u16string> types;
        for (const Relationship& relationship : source.getRelationships(ExcludeMode::ExcludeManaged)) {
            const std::u16string type = relationship.getType();
            if (std::find(types.begin(), types.end(), type) != types.end())
                continue;
            types.push_back(type);
            selection.selectors.emplace_back(relationship.getSourceURI(),
                                             RelationshipSelectorType::SourceType, type);
        }
    };
    for (const Part& part : package.getParts(ExcludeMode::ExcludeManaged)) {
        selection.parts.push_back(part.getName());
        select(part);
    }
    select(package);
    return selection;
}

/// The end of SOURCE in SOURCE:TYPE. Both can have colons: SOURCE is the shortest one that the package has.
std::size_t findEndOfSource(const Package& package, const std::string& argument) {
    const std::string names = argument.substr(0, argument.find("//")); // two slashes end a part name
    for (std::size_t colon = names.find(':'); colon != std::string::npos; colon = names.find(':', colon + 1))
        if (colon == 1 || package.hasPart(PartName(fromArgument(names.substr(0, colon)))))
            return colon;
    throw opc::Exception("The package has no part for the source in " + argument);
}

RelationshipSelector makeSelector(const std::string& argument, std::size_t colon,
                                  RelationshipSelectorType type) {
    return RelationshipSelector(URI(fromArgument(argument.substr(0, colon))), type,
                                fromArgument(argument.substr(colon + 1)));
}

/// Signing adds a relationship of such a type, so a signature over all of that type would be broken at once.
void throwIfOfSignatures(const RelationshipSelector& selector, const DigitalSignatureManager& signatures) {
    const auto types = signatures.getManagedRelationshipTypes();
    if (std::find(types.begin(), types.end(), selector.getSelectionCriteria()) != types.end())
        throw opc::Exception("The relationships of signatures can't be signed by type; use countersign to "
                             "sign them");
}

Selection select(const SignArguments& arguments, const Package& package,
                 const DigitalSignatureManager& signatures) {
    if (arguments.choosesNothing())
        return selectAll(package);
    Selection selection;
    for (const std::string& name : arguments.parts)
        selection.parts.emplace_back(fromArgument(name));
    for (const std::string& argument : arguments.relationships) // IDs have no colon
        selection.selectors.push_back(
            makeSelector(argument, argument.rfind(':'), RelationshipSelectorType::SourceId));
    for (const std::string& argument : arguments.relationshipTypes) {
        selection.selectors.push_back(
            makeSelector(argument, findEndOfSource(package, argument), RelationshipSelectorType::SourceType));
        throwIfOfSignatures(selection.selectors.back(), signatures);
    }
    return selection;
}

/// What no signature can cover, on one line; empty if there is nothing.
std::string describeIgnored(const PackageCoverage& coverage) {
    constexpr std::size_t TOLD = 5; // a small package can hold very many
    const auto& items = coverage.getIgnoredItems();
    std::string text;
    for (std::size_t i = 0; i < std::min(items.size(), TOLD); ++i)
        text += (i == 0 ? "" : "; ") + opc::toUDEString(items[i].name) + ": " + items[i].reason;
    if (items.size() > TOLD)
        text += "; and " + std::to_string(items.size() - TOLD) + " more";
    return text;
}

void throwIfOfStandardProfile(const SignArguments& arguments) {
    if (arguments.all)
        refuseUnlessProfile("--all", Profile::Standard);
    if (!arguments.comment.empty())
        refuseUnlessProfile("--comment", Profile::Standard);
}

/// What becomes of the signatures in the standard's profile.
class OtherSignatures {
public:
    /// @param package  before it is signed
    explicit OtherSignatures(SignedPackage& package) : parts(package.standardSignatures()) {
        if (!parts.empty())
            additions.emplace(*package);
    }

    /// @param package  after it was signed, and before it is saved
    void findBroken(SignedPackage& package) {
        if (!additions)
            return;
        for (std::string& part : additions->findBroken(*package))
            if (std::find(parts.begin(), parts.end(), part) != parts.end())
                broken.push_back(std::move(part));
    }

    void tell(FileRun& run) const {
        for (const std::string& part : broken)
            run.tell("warning: the signature " + part + " doesn't hold any more");
        if (broken.size() < parts.size())
            run.tell(
                "warning: the signatures in the standard's profile don't cover this one: they are partial "
                "now");
    }

private:
    std::vector<std::string> parts;
    std::optional<SignatureAdditions> additions;
    std::vector<std::string> broken;
};

} // namespace

void signInOwnProfile(FileRun& run, SignedPackage& package, const SignArguments& arguments) {
    throwIfOfStandardProfile(arguments);
    const SigningMaterial material(arguments.signing);
    OtherSignatures others(package);
    DigitalSignatureManager& signatures = package.signatures();
    const Selection selection = select(arguments, *package, signatures);
    const DigitalSignature signature = material.apply([&](const auto&... signer) {
        return signatures.sign(selection.parts, selection.selectors, signer...);
    });
    const bool breaksCountersignature = signatures.isPackageCountersigned();
    const std::string ignored = describeIgnored(signatures.computeCoverage({signature}));
    others.findBroken(package);
    package.save();
    if (!ignored.empty())
        run.tell("warning: no signature covers what other programs may read: " + ignored);
    if (breaksCountersignature)
        run.tell("warning: the countersignature doesn't hold any more");
    others.tell(run);
    printResult(run, {opc::toUDEString(signature.getName()), Profile::OpcModel, {}, {}, {}, {}});
}

void countersign(FileRun& run, SignedPackage& package, const SignArguments& arguments) {
    const SigningMaterial material(arguments.signing);
    OtherSignatures others(package);
    const DigitalSignature signature = material.apply(
        [&](const auto&... signer) { return package.signatures().countersignAllSignatures(signer...); });
    others.findBroken(package);
    package.save();
    others.tell(run);
    run.printName(opc::toUDEString(signature.getName()));
}

} // namespace opctool
