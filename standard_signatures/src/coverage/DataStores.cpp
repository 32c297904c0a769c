#include "coverage/DataStores.hpp"

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
constexpr std::string_view RELATIONSHIP = "/customxmlprops";                 // the end of both editions' type

/// The parts that describe a store, for programs that go by their content type or by what leads to them.
std::vector<const StoredPart*> findStores(const PackageContents& contents,
                                          const std::vector<MappedRelationship>& relationships) {
    std::set<const StoredPart*> stores; // in the order of the package
    for (const StoredPart& part : contents.parts())
        if (part.contentType && part.contentType->size() == CONTENT_TYPE.size() &&
            keyOf(*part.contentType) == CONTENT_TYPE)
            stores.insert(&part);
    for (const MappedRelationship& one : relationships) {
        const std::string_view type = one.values->type;
        if (one.target != nullptr && type.size() > RELATIONSHIP.size() &&
            keyOf(type.substr(type.size() - RELATIONSHIP.size())) == RELATIONSHIP)
            stores.insert(one.target);
    }
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

std::vector<const StoredPart*> findRepeatedStores(const PackageContents& contents,
                                                  const std::vector<MappedRelationship>& relationships) {
    const std::vector<const StoredPart*> stores = findStores(contents, relationships);
    std::vector<const StoredPart*> repeated;
    std::set<std::string> known;
    for (std::size_t i = 0; stores.size() > 1 && i < stores.size(); ++i)
        if (const std::string id = readID(contents, *stores[i]); !id.empty() && !known.insert(id).second)
            repeated.push_back(stores[i]);
    return repeated;
}

} // namespace opc::standard_signatures
