#include "mending/Menders.hpp"

#include "checks/relationships/ValueRules.hpp"
#include "subject/Names.hpp"
#include "subject/Targets.hpp"

#include <algorithm>
#include <cctype>
#include <iterator>

namespace opc::editing::mending {

namespace {

using inspection::Reference;
using inspection::trimmed;
using Stage = Mender::Stage;

const char* const RELATIONSHIPS_NOT_EDITED = "The relationships part can't be edited";
const char* const IS_USED =
    "The markup of the part names the relationship: only a person knows what it should show";

Outcome removeUnused(Round& round, const Finding& finding) {
    const EditedEntry entry = round.entryOf(finding);
    if (!entry)
        return left(RELATIONSHIPS_NOT_EDITED);
    if (round.isUsed(*entry.relationships->view, entry.view().id))
        return left(IS_USED);
    return mended("The relationship is taken out", {entry.remove()});
}

Outcome dropRelationships(Round& round, const Finding& finding) {
    const RelationshipsView* const view = round.viewOf(finding);
    if (view == nullptr)
        return left(RELATIONSHIPS_NOT_EDITED);
    return mended("The relationships part is taken out", {round.dropPart(*view->part)});
}

Outcome dropNested(Round& round, const Finding& finding) {
    const RelationshipsView* const view = round.viewOf(finding);
    if (view != nullptr && inspection::isRelationshipsName(view->source))
        return dropRelationships(round, finding);
    return removeUnused(round, finding);
}

std::string newId(EditedRelationships& relationships) {
    std::size_t& number = relationships.lastNumber;
    number = std::max(number, relationships.elements.size());
    for (;;)
        if (std::string id = "rId" + std::to_string(++number); relationships.ids.emplace(id, 0).second)
            return id;
}

bool isSame(const RelationshipView& left, const RelationshipView& right) {
    return left.type == right.type && left.target == right.target && left.isExternal == right.isExternal;
}

Outcome giveId(Round& round, const Finding& finding) {
    const EditedEntry entry = round.entryOf(finding);
    if (!entry)
        return left(RELATIONSHIPS_NOT_EDITED);
    const std::string_view id = trimmed(entry.view().id);
    const bool isUsed = !id.empty() && round.isUsed(*entry.relationships->view, entry.view().id);
    if (isUsed && inspection::isValidID(id)) {
        if (!isSame(entry.first().view(), entry.view()))
            return left(IS_USED);
        return mended("The relationship is taken out: it is the same as the first", {entry.remove()});
    }
    if (isUsed)
        return left(IS_USED);
    const std::string given = newId(*entry.relationships);
    return mended("The relationship gets the Id " + given, {entry.set(u"Id", given)});
}

bool isHex(char c) {
    return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

/// Percent-encodes what a reference can't have.
std::string encodeTarget(std::string_view target, bool isExternal) {
    constexpr char HEX_DIGITS[] = "0123456789ABCDEF";
    const Reference reference(target);
    const auto placeOf = [target](std::string_view piece) {
        return static_cast<std::size_t>(piece.data() - target.data());
    };
    const std::size_t authority = reference.hasAuthority ? placeOf(reference.authority) : 0;
    const std::size_t authorityEnd = authority + reference.authority.size();
    const std::size_t fragment = reference.hasFragment ? placeOf(reference.fragment) : target.size();
    const bool hasNoScheme = !reference.hasScheme && !reference.hasAuthority;
    const std::size_t firstSegment = hasNoScheme ? reference.path.find('/') : 0;
    std::string encoded;
    for (std::size_t i = 0; i < target.size(); ++i) {
        const char c = target[i];
        const bool isBroken =
            c == '%' && !(i + 2 < target.size() && isHex(target[i + 1]) && isHex(target[i + 2]));
        const bool isBracket = (c == '[' || c == ']') && (i < authority || i >= authorityEnd);
        const bool isSecond = c == '#' && i >= fragment;
        const bool isScheme = c == ':' && i < firstSegment; // the reference would have one then
        const bool isOdd =
            !isExternal && std::string_view(" \t\r\n\"<>\\^`{|}").find(c) != std::string_view::npos;
        if (isBroken || isBracket || isSecond || isScheme || isOdd) {
            const auto byte = static_cast<unsigned char>(c);
            encoded.append({'%', HEX_DIGITS[byte >> 4U], HEX_DIGITS[byte & 15U]});
        } else {
            encoded += c;
        }
    }
    return encoded;
}

Outcome setTarget(const EditedEntry& entry, const std::string& target) {
    return mended("The Target is written " + target, {entry.set(u"Target", target)});
}

Outcome correctTarget(Round& round, const Finding& finding) {
    const EditedEntry entry = round.entryOf(finding);
    if (!entry)
        return left(RELATIONSHIPS_NOT_EDITED);
    const std::string_view target = trimmed(entry.view().target);
    if (target.empty())
        return removeUnused(round, finding);
    std::string corrected(target);
    if (!entry.view().isExternal) // readers take both for slashes
        for (char& c : corrected)
            c = c == '\\' ? '/' : c;
    corrected = encodeTarget(corrected, entry.view().isExternal);
    if (!inspection::findURIDefect(corrected, entry.view().isExternal).what.empty())
        return left("Where it should lead isn't known");
    return setTarget(entry, corrected);
}

Outcome leadOut(Round& round, const Finding& finding) {
    const EditedEntry entry = round.entryOf(finding);
    if (!entry)
        return left(RELATIONSHIPS_NOT_EDITED);
    if (entry.view().lastSegment() != "hyperlink")
        return left("Only a person knows whether it may lead out of the package: readers would load it");
    return mended("The relationship gets TargetMode=\"External\"", {entry.set(u"TargetMode", "External")});
}

Outcome mendInternal(Round& round, const Finding& finding) {
    const EditedEntry entry = round.entryOf(finding);
    if (!entry)
        return left(RELATIONSHIPS_NOT_EDITED);
    const RelationshipView& view = entry.view();
    if (view.part == nullptr && entry.relationships->view->source == "/" && inspection::leadsToMainPart(view))
        return left("The main part is lost, and the format is known by the relationship alone");
    if (view.part == nullptr)
        return removeUnused(round, finding);
    const Reference reference(trimmed(view.target));
    return setTarget(entry, view.part->name + (reference.hasFragment ? '#' + std::string(reference.fragment)
                                                                     : std::string()));
}

constexpr Mender RELATIONSHIP_MENDERS[] = {
    {"M1.25", Stage::Within, "Takes the relationships part out, or a relationship that no markup names",
     dropNested},
    {"M1.26", Stage::Within, "Gives the relationship a new Id if no markup names the old one", giveId},
    {"M1.28", Stage::Within,
     "Percent-encodes what a URI can't have, or takes the relationship out if it has no target and no markup "
     "names it",
     correctTarget},
    {"M1.29", Stage::Within, "Adds TargetMode=\"External\" to hyperlinks", leadOut},
    {"SEC-17", Stage::Within,
     "Names the part from the root if there is one, or takes the relationship out if no markup names it",
     mendInternal},
    {"SEC-34", Stage::Within, "Takes the relationships part out", dropRelationships},
};

} // namespace

MenderRows relationshipMenders() {
    return {RELATIONSHIP_MENDERS, std::size(RELATIONSHIP_MENDERS)};
}

} // namespace opc::editing::mending
