#include "coverage/DataStores.hpp"

#include "coverage/PaidContent.hpp"
#include "names/PartNames.hpp"
#include "xml/Narrow.hpp"
#include "xml/PackageDocument.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>

namespace opc::standard_signatures {

namespace {

constexpr std::string_view CONTENT_TYPE =
    "application/vnd.openxmlformats-officedocument.customxmlproperties+xml"; // in lower case

// the ends of both editions' types
constexpr std::string_view STORE = "/customxml";
constexpr std::string_view DESCRIPTION = "/customxmlprops";

/// The types of both editions, which all programs know.
constexpr std::string_view DESCRIPTION_TYPES[] = {
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/customXmlProps",
    "http://purl.oclc.org/ooxml/officeDocument/relationships/customXmlProps",
};

bool hasType(const MappedRelationship& relationship, std::string_view end) {
    const std::string_view type = relationship.values->type;
    return type.size() > end.size() && keyEndsWith(type, end);
}

/// Whether all programs find the target.
bool isPlain(const MappedRelationship& relationship) {
    const std::string_view target = relationship.values->target;
    return target.find_first_of("%\\?#") == std::string_view::npos &&
           resolveTarget(*relationship.document->source, target) == relationship.target->name;
}

/// The IDs in the description of a store.
class DescriptionReader final : public PackageDocument {
public:
    void onStart(const model::XmlElement& element, const model::XmlPlace&) override {
        constexpr unsigned DEEPEST = 20;
        if (depth == 0)
            for (const std::u16string_view one :
                 {u"http://schemas.openxmlformats.org/officeDocument/2006/customXml",
                  u"http://purl.oclc.org/ooxml/officeDocument/customXml"})
                if (element.localName() == u"datastoreItem" && element.namespaceURI() == one)
                    ofRoot = narrow(element.valueOf(one, u"itemID"));
        if (++depth > DEEPEST)
            refuse("The description of a data store is nested too deeply");
        for (std::size_t i = 0; i < element.attributeCount(); ++i)
            if (const model::XmlAttribute one = element.attribute(i); one.localName == u"itemID")
                all.insert(keyOf(narrow(one.value)));
    }
    void onEnd() override { --depth; }

    std::string ofRoot;        ///< as it is written; empty if all programs don't find it
    std::set<std::string> all; ///< at whatever element
    bool isWhole = true;       ///< it was read to its end

private:
    unsigned depth = 0;
};

class RootReader final : public PackageDocument {
public:
    struct Done {};

    void onStart(const model::XmlElement& element, const model::XmlPlace&) override {
        name = element.localName();
        throw Done();
    }

    std::u16string name;
};

/// Reads the beginnings of documents, in all far more than packages have.
class BeginningsReader {
public:
    explicit BeginningsReader(const PackageContents& contents) : contents(contents) {}

    DescriptionReader readDescription(const StoredPart& part) {
        DescriptionReader reader;
        try {
            read(reader, part);
        } catch (const Exception&) { // other programs may read on; what came so far counts
            reader.ofRoot.clear();
            reader.isWhole = false;
        }
        return reader;
    }

    /// @return an empty one if it can't be told
    std::u16string readRootName(const StoredPart& part) {
        RootReader reader;
        try {
            read(reader, part);
        } catch (const RootReader::Done&) {
        } catch (const Exception&) {
        }
        return reader.name;
    }

private:
    void read(PackageDocument& reader, const StoredPart& part) {
        constexpr std::uint64_t FARTHEST = 65536; // bytes: a description has an ID and some schemas
        PaidContent content(contents.open(part), room);
        reader.read(content, std::min(FARTHEST, room));
    }

    const PackageContents& contents;
    std::uint64_t room = 16U << 20; ///< bytes
};

/// The stores of a package and what describes them.
class Stores {
public:
    Stores(const PackageContents& contents, const std::vector<MappedRelationship>& relationships)
        : contents(contents), beginnings(contents) {
        for (const StoredPart& part : contents.parts()) // some programs go by the content type
            if (part.contentType && part.contentType->size() == CONTENT_TYPE.size() &&
                keyOf(*part.contentType) == CONTENT_TYPE)
                descriptions[&part];
        for (const MappedRelationship& one : relationships)
            if (one.target != nullptr && hasType(one, STORE))
                parts.insert(one.target);
            else if (one.target != nullptr && hasType(one, DESCRIPTION)) {
                descriptions[one.target].push_back(&one);
                ++uses;
            }
    }

    bool areSeveral() const { return parts.size() > 1 || descriptions.size() > 1 || uses > 1; }

    StoresOfPackage find() {
        StoresOfPackage found;
        std::map<const StoredPart*, std::string> ids; // of the stores
        std::set<std::string> known;
        for (const auto& [part, users] : descriptions) {
            const DescriptionReader read = beginnings.readDescription(*part);
            bool isTwin = users.size() > 1;
            for (const std::string& id : read.all)
                isTwin = !known.insert(id).second || isTwin;
            if (isTwin)
                found.twins.push_back({part->name,
                                       "it describes another data store with the same ID, and their order "
                                       "can't be signed"});
            else if (!read.isWhole)
                found.twins.push_back({part->name, "it can't be told which data stores it describes"});
            for (const MappedRelationship* const user : users)
                addId(ids, *user, read.ofRoot);
        }
        if (parts.size() > 1)
            found.all = list(ids);
        return found;
    }

private:
    /// A second description makes the ID unknown.
    void addId(std::map<const StoredPart*, std::string>& ids, const MappedRelationship& user,
               const std::string& id) const {
        const bool isFound = std::find(std::begin(DESCRIPTION_TYPES), std::end(DESCRIPTION_TYPES),
                                       user.values->type) != std::end(DESCRIPTION_TYPES) &&
                             isPlain(user);
        const auto [known, isNew] = ids.emplace(contents.find(*user.document->source), isFound ? id : "");
        if (!isNew)
            known->second.clear();
    }

    /// With the properties of the package, into which programs look, too.
    std::vector<DataStore> list(const std::map<const StoredPart*, std::string>& ids) {
        std::vector<DataStore> listed{{u"coreProperties", "{6C3C8BC8-F283-45AE-878A-BAB7291924A1}"},
                                      {u"Properties", "{6668398D-A668-4E3E-A5EB-62B293D839F1}"}};
        for (const StoredPart* const part : parts) {
            const auto id = ids.find(part);
            listed.push_back({beginnings.readRootName(*part), id == ids.end() ? std::string() : id->second});
        }
        return listed;
    }

    const PackageContents& contents;
    BeginningsReader beginnings;
    std::set<const StoredPart*> parts; ///< in the order of the package, also those that nothing describes
    /// By part, with the relationships that lead to it.
    std::map<const StoredPart*, std::vector<const MappedRelationship*>> descriptions;
    std::size_t uses = 0; ///< of descriptions
};

} // namespace

StoresOfPackage findStores(const PackageContents& contents,
                           const std::vector<MappedRelationship>& relationships) {
    Stores stores(contents, relationships);
    return stores.areSeveral() ? stores.find() : StoresOfPackage();
}

} // namespace opc::standard_signatures
