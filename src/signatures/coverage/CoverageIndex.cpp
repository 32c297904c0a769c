#include "signatures/coverage/CoverageIndex.hpp"

#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"

#include <opc/model/DigitalSignature.hpp>

#include <algorithm>
#include <iterator>

namespace opc::model {

namespace {

using Places = CoverageIndex::Places;

void append(std::size_t place, Places& places) {
    if (places.empty() || places.back() != place)
        places.push_back(place);
}

const Places& findOrNone(const std::map<std::u16string, Places>& index, const std::u16string& text) {
    static const Places none;
    const auto found = index.find(text);
    return found == index.end() ? none : found->second;
}

} // namespace

void CoverageIndex::add(const DigitalSignature& signature) {
    const std::size_t place = count++;
    for (const Reference& reference : DigitalSignatureData::of(signature).m_content.manifestReferences) {
        const PartName name(reference.referenceURI.getPath());
        if (!reference.selectsRelationships()) {
            CoveredPart& part = parts[name];
            part.queries.insert(reference.referenceURI.getQuery());
            append(place, part.by);
            continue;
        }
        Selected& selected = relationships[name];
        for (const std::u16string& id : reference.relationshipReferences)
            append(place, selected.ids[id]);
        for (const std::u16string& type : reference.relationshipGroupReferences)
            append(place, selected.types[type]);
    }
}

const CoverageIndex::CoveredPart* CoverageIndex::find(const PartName& name) const {
    const auto found = name.isRelationshipName() ? parts.end() : parts.find(name);
    return found == parts.end() ? nullptr : &found->second;
}

const CoverageIndex::Selected* CoverageIndex::findSelected(const URI& source) const {
    const auto found = relationships.find(PartName(PartName(source).getRelationshipPartName()));
    return found == relationships.end() ? nullptr : &found->second;
}

Places CoverageIndex::findCovering(const PartName& name) const {
    const CoveredPart* const part = find(name);
    return part == nullptr ? Places() : part->by;
}

Places CoverageIndex::findCovering(const Relationship& relationship) const {
    Places covering;
    const Selected* const selected = findSelected(relationship.getSourceURI());
    if (selected == nullptr || isExcepted(relationship))
        return covering;
    const Places& byID = findOrNone(selected->ids, relationship.getID());
    const Places& byType = findOrNone(selected->types, relationship.getType());
    std::set_union(byID.begin(), byID.end(), byType.begin(), byType.end(), std::back_inserter(covering));
    return covering;
}

bool CoverageIndex::covers(const Relationship& relationship, const Selected* selected) const {
    return selected != nullptr && !isExcepted(relationship) &&
           (selected->ids.count(relationship.getID()) != 0 ||
            selected->types.count(relationship.getType()) != 0);
}

bool CoverageIndex::isExcepted(const Relationship& relationship) const {
    return originURI && leadsToCountersignature(relationship, *originURI);
}

} // namespace opc::model
