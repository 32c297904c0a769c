#include "signing/SigningPlan.hpp"

#include "crypto/Methods.hpp"
#include "document/SignatureDocument.hpp"
#include "hash/TextHash.hpp"
#include "names/PartNames.hpp"
#include "reason/Refusal.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <set>
#include <unordered_map>

namespace opc::standard_signatures {

namespace {

using Choice = SigningOptions::RelationshipChoice;

/// What can be understood in two ways would be signed as something else than what a program shows.
void throwIfAmbiguous(const PackageContents& contents, const PackageMap& map) {
    if (const auto& failure = contents.contentTypesFailure())
        throw SigningRefused("The content types can't be signed: " + failure->text);
    for (const Reason& reason : map.unreadable())
        throw SigningRefused("The relationships in " + reason.place + " can't be signed: " + reason.text);
    throwIfMisnamed(map);
    for (const MappedRelationship* const one : map.repeatedImplicit())
        throw SigningRefused("The relationship of " + *one->document->source + " with the type " +
                             one->values->type +
                             " isn't the only one of its kind. Programs take the first one, and their "
                             "order can't be signed");
    for (const UnsignedChoice& one : map.unsignedChoices())
        throw SigningRefused("The part " + std::string(one.part) + " can't be signed: " + one.reason);
    if (map.secondOrigin() != nullptr)
        throw SigningRefused("More than one relationship leads to an origin of signatures");
    for (const StoredPart& part : contents.parts())
        for (const std::string& reason : contents.whyAmbiguous(part))
            throw SigningRefused("The part " + part.name + " can be understood in different ways: " + reason);
}

/// Relationships parts are there once their relationships are signed.
SigningPlan planRelationships(const std::vector<const MappedRelationship*>& chosen) {
    SigningPlan plan;
    for (const MappedRelationship* const one : chosen) {
        if (plan.relationships.empty() || plan.relationships.back().document != one->document)
            plan.relationships.push_back({one->document, {}, {}});
        plan.relationships.back().selected.push_back(one->values);
    }
    return plan;
}

bool isSigned(RelationshipRole role, bool signsAll) {
    return role == RelationshipRole::Content || (signsAll && role == RelationshipRole::LeftOutByCustom);
}

/// Lets nobody add properties or a thumbnail to a package that has none.
void closeToProperties(SigningPlan& plan, const PackageContents& contents) {
    const StoredPart* const document = contents.find(relationshipsNameOf("/"));
    if (document == nullptr)
        return;
    const auto isOfPackage = [document](const auto& one) { return one.document == document; };
    auto found = std::find_if(plan.relationships.begin(), plan.relationships.end(), isOfPackage);
    if (found == plan.relationships.end())
        found = plan.relationships.insert(found, {document, {}, {}});
    found->types = PackageMap::typesLeftOutByCustom();
}

/// Finds what it names, which must be signed, too.
void readNames(PackageContents& contents, const StoredPart& part, const SigningOptions& options) {
    try {
        contents.digest(part, digestMethodOf(options.digest));
    } catch (const Refusal&) { // whoever signs it says so
    }
}

SigningPlan planEverything(PackageContents& contents, const PackageMap& map, const SigningOptions& options) {
    const bool signsAll = options.signsAll;
    std::vector<const MappedRelationship*> chosen;
    for (const MappedRelationship& one : map.relationships())
        if (isSigned(one.role, signsAll))
            chosen.push_back(&one);
    SigningPlan plan = planRelationships(chosen);
    if (signsAll)
        closeToProperties(plan, contents);
    const auto mustSign = [&](const StoredPart& part) {
        const ContentForm* const form = map.exemptFormOf(part);
        return form == nullptr || contents.whyUnfit(part, *form) != nullptr ||
               (signsAll && !map.isOfSignatures(part));
    };
    std::set<const StoredPart*> planned; // in the order of the package
    std::size_t known = 0;
    do {
        known = planned.size();
        for (const StoredPart& part : contents.parts())
            if (!part.source && mustSign(part) && planned.insert(&part).second)
                readNames(contents, part, options);
    } while (known != planned.size());
    plan.parts.assign(planned.begin(), planned.end());
    return plan;
}

/// Each relationship once, in the order of the package.
std::vector<const MappedRelationship*> findChosen(const PackageMap& map, const std::vector<Choice>& choices) {
    std::unordered_map<std::string, const MappedRelationship*, TextHash> known; // a NUL is in no name
    for (const MappedRelationship& one : map.relationships())
        known.emplace(keyOf(*one.document->source) + '\0' + one.values->id, &one);
    std::vector<const MappedRelationship*> chosen;
    for (const Choice& choice : choices) {
        const auto found = known.find(keyOf(decodePercent(choice.source)) + '\0' + choice.id);
        if (found == known.end())
            throw SigningRefused("There is no relationship " + choice.id + " of " + choice.source);
        chosen.push_back(found->second);
    }
    std::sort(chosen.begin(), chosen.end());
    chosen.erase(std::unique(chosen.begin(), chosen.end()), chosen.end());
    return chosen;
}

SigningPlan planChoice(const PackageContents& contents, const PackageMap& map,
                       const SigningOptions& options) {
    SigningPlan plan = planRelationships(findChosen(map, options.relationships));
    for (const std::string& name : options.parts) {
        const StoredPart* const part = contents.find(decodePercent(name));
        if (part == nullptr || part->source)
            throw SigningRefused("There is no part " + name);
        plan.parts.push_back(part);
    }
    std::sort(plan.parts.begin(), plan.parts.end());
    plan.parts.erase(std::unique(plan.parts.begin(), plan.parts.end()), plan.parts.end());
    return plan;
}

} // namespace

SigningPlan SigningPlan::make(PackageContents& contents, const PackageMap& map,
                              const SigningOptions& options) {
    throwIfAmbiguous(contents, map);
    SigningPlan plan = options.parts.empty() && options.relationships.empty()
                           ? planEverything(contents, map, options)
                           : planChoice(contents, map, options);
    if (plan.parts.empty() && plan.relationships.empty())
        throw SigningRefused("There is nothing to sign");
    if (plan.parts.size() + plan.relationships.size() > SignatureDocument::MOST_REFERENCES)
        throw SigningRefused("A signature can't have more than " +
                             std::to_string(SignatureDocument::MOST_REFERENCES) + " references");
    return plan;
}

SignedContents SigningPlan::signedContents() const {
    SignedContents contents;
    contents.parts.insert(parts.begin(), parts.end());
    contents.contentTypes = contents.parts;
    for (const Relationships& one : relationships)
        contents.relationships.insert(one.selected.begin(), one.selected.end());
    return contents;
}

void throwIfMisnamed(const PackageMap& map) {
    for (const interfaces::MisnamedItem& item : map.misnamedItems())
        throw SigningRefused("Other programs may take " + toUDEString(item.name) +
                             " for something else: " + item.reason);
}

std::vector<std::string> findUnreachable(const PackageContents& contents, const PackageMap& map) {
    std::unordered_multimap<const StoredPart*, const StoredPart*> targets; // by source; null for the package
    for (const MappedRelationship& one : map.relationships()) {
        const StoredPart* const source = map.sourceOf(one);
        if (one.target != nullptr && (source != nullptr || *one.document->source == "/"))
            targets.emplace(source, one.target);
    }
    std::unordered_set<const StoredPart*> reached;
    std::vector<const StoredPart*> next{nullptr};
    while (!next.empty()) {
        const StoredPart* const source = next.back();
        next.pop_back();
        for (auto [one, end] = targets.equal_range(source); one != end; ++one)
            if (reached.insert(one->second).second)
                next.push_back(one->second);
    }
    std::vector<std::string> unreachable;
    for (const StoredPart& part : contents.parts())
        if (!part.source && reached.count(&part) == 0)
            unreachable.push_back(part.name);
    return unreachable;
}

std::vector<std::string> findDangling(const SignedContents& contents, const PackageMap& map) {
    std::vector<std::string> dangling;
    for (const MappedRelationship& one : map.relationships()) {
        const std::string& source = *one.document->source;
        if (!one.values->isExternal && one.target == nullptr && contents.has(one) &&
            keyOf(resolveTarget(source, one.values->target)) != keyOf(source)) // the package itself
            dangling.push_back(source + "#" + one.values->id);
    }
    return dangling;
}

} // namespace opc::standard_signatures
