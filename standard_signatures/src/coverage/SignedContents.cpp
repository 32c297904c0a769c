#include "coverage/SignedContents.hpp"

#include "reason/Shortened.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <utility>

namespace opc::standard_signatures {

namespace {

using GapKind = Unsigned::Kind;

constexpr std::size_t LONGEST_TEXT = 200; ///< of IDs and types that are listed

class Comparison {
public:
    Comparison(const SignedContents& contents, PackageContents& package, const PackageMap& map,
               std::size_t& room)
        : contents(contents), package(package), map(map), room(room),
          signsProperties(signsCoreProperties(contents, map)) {}

    CoverageAnswer run() {
        compareParts();
        compareRelationships();
        compareOrder();
        compareOrigins();
        compareMainDocument();
        for (const interfaces::IgnoredItem& item : package.ignoredItems())
            addGap({GapKind::Item, toUDEString(item.name), {}, {}, "isn't a part: " + item.reason});
        for (const interfaces::MisnamedItem& item : map.misnamedItems())
            addGap({GapKind::Item,
                    toUDEString(item.name),
                    {},
                    {},
                    item.reason + ": other programs may take it for something else"});
        if (const StoredPart* const part = contents.withUnsignedObject)
            addGap({GapKind::Part, part->name, {}, {}, "it has content that it doesn't sign"});
        for (const StoredPart* const part : contents.renamed)
            addGap({GapKind::Item, part->name, {}, {}, "it was signed with its name written in another way"});
        for (const Reason& reason : map.unreadable())
            addGap({GapKind::Part, reason.place, {}, {}, "its relationships can't be told: " + reason.text});
        return std::move(answer);
    }

private:
    void addGap(Unsigned gap) {
        ++answer.gapCount;
        list(answer.gaps, std::move(gap));
    }

    void addByCustom(Unsigned one) { list(answer.byCustom, std::move(one)); }

    void list(std::vector<Unsigned>& all, Unsigned one) {
        if (room == 0)
            return;
        --room;
        one.id = shortened(one.id, LONGEST_TEXT);
        one.type = shortened(one.type, LONGEST_TEXT);
        all.push_back(std::move(one));
    }

    void compareParts() {
        for (const StoredPart& part : package.parts()) {
            for (std::string& reason : package.whyAmbiguous(part))
                addGap({GapKind::Item, part.name, {}, {}, std::move(reason)});
            if (part.source)
                continue;
            if (contents.parts.count(&part) != 0) {
                ++answer.signedParts;
                if (contents.contentTypes.count(&part) == 0)
                    addGap({GapKind::ContentType, part.name, {}, {}, "its content type isn't signed"});
            } else if (const ContentForm* const form =
                           signsProperties && !map.isOfSignatures(part) ? nullptr : map.exemptFormOf(part);
                       form == nullptr || (form->isOfSignatures() && map.isAmongContent(part))) {
                addGap({GapKind::Part, part.name, {}, {}, "its content isn't signed"});
            } else if (const Reason* const failure = package.whyUnfit(part, *form)) {
                addGap({GapKind::Part, part.name, {}, {}, failure->text});
            } else if (!map.isOfSignatures(part)) {
                addByCustom({GapKind::Part, part.name, {}, {}, "its content isn't signed, by custom"});
            }
        }
    }

    void compareRelationships() {
        for (const MappedRelationship& one : map.relationships()) {
            const RelationshipValues& values = *one.values;
            if (contents.has(one)) {
                ++answer.signedRelationships;
                answer.externalTargets += values.isExternal ? 1 : 0;
            } else if (one.role == RelationshipRole::Content ||
                       (signsProperties && one.role == RelationshipRole::LeftOutByCustom)) {
                addGap({GapKind::Relationship, *one.document->source, values.id, values.type,
                        values.isExternal ? "the relationship isn't signed, and leads out of the package"
                                          : "the relationship isn't signed"});
            } else if (one.role == RelationshipRole::LeftOutByCustom) {
                addByCustom({GapKind::Relationship, *one.document->source, values.id, values.type,
                             "the relationship isn't signed, by custom"});
            }
        }
    }

    void compareOrder() {
        for (const MappedRelationship* const one : map.repeatedImplicit())
            if (contents.parts.count(one->document) == 0)
                addGap({GapKind::Relationship, *one->document->source, one->values->id, one->values->type,
                        "there is another one of its kind, and their order isn't signed"});
        for (const UnsignedChoice& one : map.unsignedChoices())
            addGap({GapKind::Item, std::string(one.part), {}, {}, one.reason});
    }

    void compareOrigins() {
        if (const MappedRelationship* const second = map.secondOrigin())
            addGap({GapKind::Relationship, "/", second->values->id, second->values->type,
                    "more than one relationship leads to an origin of signatures"});
    }

    /// Other formats than those of office programs find their document in other ways.
    void compareMainDocument() {
        const auto& all = map.relationships();
        const auto isMain = [](const MappedRelationship& one) { return one.isMain; };
        const auto count = std::count_if(all.begin(), all.end(), isMain);
        if (count > 1)
            addGap(
                {GapKind::MainDocument, "/", {}, {}, "more than one relationship leads to a main document"});
        else if (count == 1 && std::find_if(all.begin(), all.end(), isMain)->target == nullptr)
            addGap({GapKind::MainDocument, "/", {}, {}, "the main document is missing"});
    }

    /// Whether the signature signs the core properties: then it must sign all that custom leaves out.
    static bool signsCoreProperties(const SignedContents& contents, const PackageMap& map) {
        return std::any_of(contents.parts.begin(), contents.parts.end(), [&map](const StoredPart* part) {
            const ContentForm* const form = map.exemptFormOf(*part);
            return form != nullptr && form->kind == ContentForm::Kind::CoreProperties;
        });
    }

    const SignedContents& contents;
    PackageContents& package;
    const PackageMap& map;
    std::size_t& room;
    const bool signsProperties;
    CoverageAnswer answer;
};

} // namespace

CoverageAnswer computeCoverage(const SignedContents& contents, PackageContents& package,
                               const PackageMap& map, std::size_t& room) {
    return Comparison(contents, package, map, room).run();
}

} // namespace opc::standard_signatures
