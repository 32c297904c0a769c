#include "coverage/DataStores.hpp"

#include "names/PartNames.hpp"
#include "xml/Narrow.hpp"
#include "xml/PackageDocument.hpp"

#include <opc/core/Exception.hpp>

#include <set>
#include <string>

namespace opc::standard_signatures {

namespace {

constexpr std::string_view STORE_CONTENT_TYPE =
    "application/vnd.openxmlformats-officedocument.customxmlproperties+xml"; // in lower case

/// The ID in the root element.
class StoreReader final : public PackageDocument {
public:
    void onStart(const model::XmlElement& element, const model::XmlPlace&) override {
        for (std::size_t i = 0; isRoot && i < element.attributeCount(); ++i)
            if (const model::XmlAttribute one = element.attribute(i); one.localName == u"itemID")
                id = keyOf(narrow(one.value));
        isRoot = false;
    }

    std::string id;

private:
    bool isRoot = true;
};

} // namespace

std::vector<const StoredPart*> findRepeatedStores(const PackageContents& contents) {
    std::vector<const StoredPart*> stores;
    for (const StoredPart& part : contents.parts())
        if (part.contentType && keyOf(*part.contentType) == STORE_CONTENT_TYPE)
            stores.push_back(&part);
    std::vector<const StoredPart*> repeated;
    std::set<std::string> known;
    for (std::size_t i = 0; stores.size() > 1 && i < stores.size(); ++i)
        try {
            StoreReader reader;
            reader.read(*contents.open(*stores[i]));
            if (!reader.id.empty() && !known.insert(reader.id).second)
                repeated.push_back(stores[i]);
        } catch (const Exception&) { // programs can't read it either
        }
    return repeated;
}

} // namespace opc::standard_signatures
