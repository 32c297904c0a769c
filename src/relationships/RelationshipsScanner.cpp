#include "relationships/RelationshipsScanner.hpp"

#include "xml/CollidingIDs.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/PlainURI.hpp"

#include <opc/model/RelationshipsVocabulary.hpp>

#include <algorithm>

namespace opc::model {

namespace {

using namespace vocabulary::relationships;

/// Fills a relationship from its element, if it is valid by the schema and its values are plain.
bool takeRelationship(const PlainAttributes& attributes, ScannedRelationship& relationship) {
    for (const auto& [name, value] : attributes) {
        if (name == ID)
            relationship.id = value;
        else if (name == vocabulary::relationships::TYPE)
            relationship.type = value;
        else if (name == TARGET)
            relationship.target = value;
        else if (name == TARGET_MODE && (value == EXTERNAL || value == INTERNAL))
            relationship.targetMode = value;
        else
            return false;
    }
    const PlainURI target = recognisePlainURI(relationship.target);
    relationship.hasASCIITarget = target != PlainURI::IRI;
    return isPlainID(relationship.id) && recognisePlainURI(relationship.type) >= PlainURI::OtherScheme &&
           target >= (relationship.targetMode == EXTERNAL ? PlainURI::IRI : PlainURI::Reference);
}

bool haveDifferentIDs(const std::vector<ScannedRelationship>& relationships) {
    const auto doesNotPrecede = [](const ScannedRelationship& left, const ScannedRelationship& right) {
        return left.id >= right.id;
    };
    if (std::adjacent_find(relationships.begin(), relationships.end(), doesNotPrecede) == relationships.end())
        return true; // nearly always: most documents have them in order
    std::vector<std::string_view> ids;
    ids.reserve(relationships.size());
    for (const ScannedRelationship& relationship : relationships)
        ids.push_back(relationship.id);
    std::sort(ids.begin(), ids.end());
    return std::adjacent_find(ids.begin(), ids.end()) == ids.end();
}

/// Whether the parser's table of IDs can take these IDs.
bool areTakenTogether(const std::vector<ScannedRelationship>& relationships) {
    CollidingIDs ids;
    return std::none_of(relationships.begin(), relationships.end(),
                        [&ids](const ScannedRelationship& relationship) { return ids.add(relationship.id); });
}

} // namespace

bool scanRelationships(std::string_view document, std::vector<ScannedRelationship>& found,
                       PlainTexts& texts) {
    found.clear();
    return visitPlainDocument(document, RELATIONSHIPS, vocabulary::relationships::NAMESPACE, texts,
                              [&found](std::string_view name, const PlainAttributes& attributes) {
                                  return name == RELATIONSHIP &&
                                         takeRelationship(attributes, found.emplace_back());
                              }) &&
           haveDifferentIDs(found) && (found.size() <= CollidingIDs::MAXIMUM || areTakenTogether(found));
}

} // namespace opc::model
