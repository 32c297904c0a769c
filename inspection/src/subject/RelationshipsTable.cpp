#include "subject/RelationshipsTable.hpp"

#include "subject/EntryList.hpp"
#include "subject/Names.hpp"
#include "subject/Targets.hpp"

#include <opc/model/XmlLimits.hpp>

#include <algorithm>

namespace opc::inspection {

namespace {

constexpr std::u16string_view ID = u"Id";
constexpr std::u16string_view TYPE = u"Type";
constexpr std::u16string_view TARGET = u"Target";
constexpr std::u16string_view TARGET_MODE = u"TargetMode";

EntryListKind listKindFor(std::uint64_t mostEntries) {
    return {u"http://schemas.openxmlformats.org/package/2006/relationships",
            u"Relationships",
            {{u"Relationship", {ID, TYPE, TARGET, TARGET_MODE}, true}},
            mostEntries};
}

class RelationshipsReader final : public EntryList {
public:
    RelationshipsReader(DocumentState& state, const EntryListKind& kind,
                        std::vector<RelationshipView>& entries)
        : EntryList(state, kind), entries(entries) {}

private:
    void onEntry(std::size_t, const model::XmlElement& element, const model::XmlPlace& place) override {
        RelationshipView& entry = entries.emplace_back();
        entry.hasId = take(element, ID, entry.id);
        entry.hasType = take(element, TYPE, entry.type);
        entry.hasTarget = take(element, TARGET, entry.target);
        take(element, TARGET_MODE, entry.targetMode);
        entry.line = place.line;
        entry.column = place.column;
        entry.isExternal = equalsCaseless(trimmed(entry.targetMode), "External");
    }

    static bool take(const model::XmlElement& element, std::u16string_view name, std::string& value) {
        const std::u16string_view found = element.valueOf({}, name);
        value = narrow(found);
        return found.data() != nullptr;
    }

    std::vector<RelationshipView>& entries;
};

} // namespace

RelationshipsView readRelationships(const Archive& archive, const PartTable& parts, PartView& part,
                                    std::uint64_t mostEntries) {
    RelationshipsView view;
    view.part = &part;
    view.source = sourceOfRelationships(part.name);
    view.sourcePart = parts.find(view.source);
    if (view.sourcePart != nullptr)
        view.source = view.sourcePart->name;

    const EntryListKind kind = listKindFor(std::min(model::XmlLimits().relationships.elements, mostEntries));
    RelationshipsReader reader(view.document, kind, view.entries);
    readDocument(archive, part.items, view.document, reader);
    part.isKnownWhole = view.document.failure.empty();
    for (RelationshipView& entry : view.entries) {
        if (entry.isExternal || !entry.hasTarget)
            continue;
        entry.resolved = resolveTarget(view.source, entry.target);
        if (!entry.resolved.empty())
            entry.part = parts.find(entry.resolved);
    }
    return view;
}

RelationshipsTable::RelationshipsTable(const Archive& archive, PartTable& parts) {
    all.reserve(
        static_cast<std::size_t>(std::count_if(parts.parts().begin(), parts.parts().end(),
                                               [](const PartView& part) { return part.isRelationships(); })));
    std::uint64_t rest = model::XmlLimits().package.elements;
    for (PartView& part : parts.parts())
        if (part.isRelationships()) {
            all.push_back(readRelationships(archive, parts, part, rest));
            bySource.emplace(keyOfName(all.back().source), all.size() - 1);
            rest -= all.back().entries.size();
        }
    walk();
}

const RelationshipsView* RelationshipsTable::find(std::string_view source) const {
    const auto found = bySource.find(keyOfName(source));
    return found == bySource.end() ? nullptr : &all[found->second];
}

void RelationshipsTable::walk() {
    std::vector<const RelationshipsView*> pending;
    const auto follow = [&](std::string_view source) {
        const RelationshipsView* const view = find(source);
        if (view != nullptr && reached.insert(view->part).second)
            pending.push_back(view);
    };
    follow("/");
    while (!pending.empty()) {
        const RelationshipsView& view = *pending.back();
        pending.pop_back();
        for (const RelationshipView& entry : view.entries)
            if (entry.part != nullptr && reached.insert(entry.part).second)
                follow(entry.part->name);
    }
}

} // namespace opc::inspection
