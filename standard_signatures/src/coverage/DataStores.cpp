#include "coverage/DataStores.hpp"

#include "coverage/DataBindings.hpp"
#include "names/PartNames.hpp"
#include "xml/Narrow.hpp"
#include "xml/PackageDocument.hpp"

#include <opc/core/Exception.hpp>

#include <set>
#include <string>

namespace opc::standard_signatures {

namespace {

constexpr std::string_view CONTENT_TYPE =
    "application/vnd.openxmlformats-officedocument.customxmlproperties+xml"; // in lower case

// the ends of both editions' types
constexpr std::string_view STORE = "/customxml";
constexpr std::string_view DESCRIPTION = "/customxmlprops";

bool hasType(const MappedRelationship& relationship, std::string_view end) {
    const std::string_view type = relationship.values->type;
    return type.size() > end.size() && keyOf(type.substr(type.size() - end.size())) == end;
}

/// How many stores there are, with those that nothing describes.
std::size_t countStores(const std::vector<MappedRelationship>& relationships) {
    std::set<const StoredPart*> stores;
    for (const MappedRelationship& one : relationships)
        if (one.target != nullptr && hasType(one, STORE))
            stores.insert(one.target);
    return stores.size();
}

/// The parts that describe a store, for programs that go by their content type or by what leads to them.
std::vector<const StoredPart*> findDescriptions(const PackageContents& contents,
                                                const std::vector<MappedRelationship>& relationships) {
    std::set<const StoredPart*> stores; // in the order of the package
    for (const StoredPart& part : contents.parts())
        if (part.contentType && part.contentType->size() == CONTENT_TYPE.size() &&
            keyOf(*part.contentType) == CONTENT_TYPE)
            stores.insert(&part);
    for (const MappedRelationship& one : relationships)
        if (one.target != nullptr && hasType(one, DESCRIPTION))
            stores.insert(one.target);
    return {stores.begin(), stores.end()};
}

/// The first ID in the document, at whatever element.
class StoreReader final : public PackageDocument {
public:
    void onStart(const model::XmlElement& element, const model::XmlPlace&) override {
        for (std::size_t i = 0; id.empty() && i < element.attributeCount(); ++i)
            if (const model::XmlAttribute one = element.attribute(i); one.localName == u"itemID")
                id = keyOf(narrow(one.value));
    }

    std::string id;
};

/// @return empty if it has none
std::string readID(const PackageContents& contents, const StoredPart& store) {
    StoreReader reader;
    try {
        reader.read(*contents.open(store));
    } catch (const Exception&) { // other programs may read on; what came so far counts
    }
    return reader.id;
}

} // namespace

std::vector<StoreChoice> findStoreChoices(const PackageContents& contents,
                                          const std::vector<MappedRelationship>& relationships) {
    const std::vector<const StoredPart*> descriptions = findDescriptions(contents, relationships);
    const std::size_t stores = countStores(relationships);
    std::vector<StoreChoice> choices;
    if (descriptions.size() < 2 && stores < 2)
        return choices;
    std::set<std::string> known;
    for (const StoredPart* const one : descriptions)
        if (const std::string id = readID(contents, *one); !id.empty() && !known.insert(id).second)
            choices.push_back(
                {one, "it describes another data store with the same ID, and their order can't be signed"});
    if (stores > 1)
        for (const StoredPart* const one : findLooseBindings(contents, known))
            choices.push_back(
                {one, "a content control in it can take any data store, and their order can't be signed"});
    return choices;
}

} // namespace opc::standard_signatures
