#include "listing/PackageListing.hpp"

#include "contenttypes/ContentTypesScanner.hpp"
#include "coreproperties/CorePropertiesSerializer.hpp"
#include "listing/ContentTypeTable.hpp"
#include "names/PartNameGrammar.hpp"
#include "package/PartKeys.hpp"
#include "package/RelationshipsParts.hpp"
#include "relationships/RelationshipsScanner.hpp"
#include "xml/DocumentBudget.hpp"
#include "xml/ReplayedStream.hpp"

#include <opc/core/Text.hpp>
#include <opc/interfaces/IKeptRelationships.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/model/PhysicalInputStream.hpp>
#include <opc/model/RelationshipsVocabulary.hpp>

#include <algorithm>
#include <string>

namespace opc::model {

namespace {

constexpr std::string_view PACKAGE_SOURCE = "/";

/// How many documents and relationships a package has, about.
constexpr std::size_t USUAL_COUNT = 16;

/// Larger documents are left to `Package`.
constexpr std::size_t LARGEST_LISTED = 1 << 20;

} // namespace

struct PackageListing::Documents {
    std::shared_ptr<DocumentBudget> budget = std::make_shared<DocumentBudget>();
    std::vector<DocumentShare> shares;
};

/// Fills a listing.
class PackageListing::Reader {
public:
    Reader(interfaces::IPhysicalPackage& store, std::pmr::memory_resource& memory, PackageListing& listing)
        : store(store), memory(memory), listing(listing) {}

    /// @return false if the package isn't of the plain form
    bool run() {
        listing.documents->shares.reserve(USUAL_COUNT);
        listing.listedRelationships.reserve(USUAL_COUNT);
        scanned.reserve(USUAL_COUNT);
        return store.usesContentTypeStream() && readContentTypes() && listParts() &&
               readRelationships(PACKAGE_SOURCE, relationshipsParts->take(PACKAGE_SOURCE)) &&
               findCoreProperties() && readRelationshipsOfParts() &&
               relationshipsParts->findOrphan() == nullptr;
    }

private:
    struct Found {
        std::string_view key;
        std::string_view name;
        std::string_view contentType;
        interfaces::IPhysicalPart* physicalPart;
    };

    std::string_view keep(std::string_view text) {
        auto* const kept = static_cast<char*>(memory.allocate(text.size(), 1));
        std::copy(text.begin(), text.end(), kept);
        return {kept, text.size()};
    }

    /// @return the text; empty if it isn't a usual part name
    std::string_view keepName(const std::u16string& name) {
        auto* const kept = static_cast<char*>(memory.allocate(name.size(), 1));
        char16_t units = 0;
        std::transform(name.begin(), name.end(), kept, [&units](char16_t unit) {
            units |= unit;
            return static_cast<char>(unit);
        });
        const std::string_view text(kept, name.size());
        return units < 0x80 && isUsualPartName(text) ? text : std::string_view();
    }

    /// @return all bytes of the document, in the buffer; nothing if it is too large or can't be read
    std::optional<std::string_view> readDocument(interfaces::IPhysicalInputStream* physicalStream,
                                                 DocumentShare::Kind kind, ReadAheadBuffer& buffer) {
        DocumentShare& share = listing.documents->shares.emplace_back(listing.documents->budget, kind);
        PhysicalInputStream stream(physicalStream);
        MeteredStream metered(stream, share);
        return ReplayedStream(metered).readAhead(buffer, LARGEST_LISTED);
    }

    void addElements(std::size_t children) { listing.documents->shares.back().addElements(children + 1); }

    bool readContentTypes() {
        const auto document =
            readDocument(store.getContentTypeInputStream(), &XmlLimits::contentTypes, typesBuffer);
        if (!document || !scanContentTypes(*document, scannedTypes))
            return false;
        addElements(scannedTypes.defaults.size() + scannedTypes.overrides.size());
        return types.take(scannedTypes, keys);
    }

    bool listParts() {
        const std::vector<interfaces::IPhysicalPart*> physicalParts = store.getParts();
        parts.reserve(physicalParts.size());
        relationshipsParts.emplace(physicalParts.size(), keys);
        for (interfaces::IPhysicalPart* physicalPart : physicalParts) {
            if (physicalPart == nullptr)
                return false;
            const std::string_view name = keepName(physicalPart->getName());
            const std::string_view key = keys.keep(name);
            if (name.empty())
                return false;
            if (!isRelationshipsPartName(name))
                parts.push_back({key, name, {}, physicalPart});
            else if (types.coversRelationships(key))
                relationshipsParts->add(key, physicalPart);
            else
                return false;
        }
        const std::size_t count = parts.size();
        sortByKey(parts);
        relationshipsParts->sort();
        return parts.size() == count && findContentTypes();
    }

    bool findContentTypes() {
        for (Found& part : parts) {
            part.contentType = types.findNext(part.key);
            if (part.contentType.empty())
                return false;
        }
        return types.hasUsualRest();
    }

    bool readRelationshipsOfParts() {
        listing.listedParts.reserve(parts.size());
        return std::all_of(parts.begin(), parts.end(), [this](const Found& part) {
            const std::size_t before = listing.listedRelationships.size();
            if (!readRelationships(part.name, relationshipsParts->take(part.key)))
                return false;
            listing.listedParts.push_back({part.name, keep(part.contentType), part.physicalPart,
                                           listing.listedRelationships.size() - before});
            return true;
        });
    }

    /// @param part  null if the source has none
    bool readRelationships(std::string_view source, interfaces::IPhysicalPart* part) {
        if (part == nullptr)
            return true;
        if (dynamic_cast<const interfaces::IKeptRelationships*>(part) != nullptr)
            return false;
        const auto document = readDocument(part->getInputStream(), &XmlLimits::relationships, buffer);
        PlainTexts texts; // `scanned` points into them
        if (!document || !scanRelationships(*document, scanned, texts))
            return false;
        addElements(scanned.size());
        const auto precedes = [](const ScannedRelationship& left, const ScannedRelationship& right) {
            return left.id < right.id;
        };
        if (!std::is_sorted(scanned.begin(), scanned.end(), precedes))
            std::sort(scanned.begin(), scanned.end(), precedes);
        for (const ScannedRelationship& one : scanned)
            listing.listedRelationships.push_back({source, keep(one.id), keep(one.type), keep(one.target),
                                                   one.targetMode == vocabulary::relationships::EXTERNAL});
        return true;
    }

    /// Looks among the relationships of the package, which must be the only ones that were read.
    /// @return false if there is more than one relationship of core properties [M4.1]
    bool findCoreProperties() {
        static const std::string type = toUDEString(PackageHelper::getCorePropertiesRelationshipType());
        const auto& all = listing.listedRelationships;
        return std::all_of(all.begin(), all.end(), [this](const ListedRelationship& one) {
            if (one.type != type)
                return true;
            if (listing.coreProperties != NONE)
                return false;
            listing.coreProperties = one.isExternal ? LEFT : findTarget(one.target);
            return true;
        });
    }

    /// @param target  of a relationship of the package
    std::size_t findTarget(std::string_view target) {
        const std::string name = (target.substr(0, 1) == PACKAGE_SOURCE ? "" : "/") + std::string(target);
        if (!isUsualPartName(name))
            return LEFT;
        const std::string_view key = keys.keep<char>(name);
        const auto found =
            std::lower_bound(parts.begin(), parts.end(), key,
                             [](const Found& part, std::string_view sought) { return part.key < sought; });
        return found == parts.end() || found->key != key ? LEFT
                                                         : static_cast<std::size_t>(found - parts.begin());
    }

    interfaces::IPhysicalPackage& store;
    std::pmr::memory_resource& memory;
    PackageListing& listing;
    PartKeys keys;
    ReadAheadBuffer typesBuffer; ///< of the content types, which lie in it
    ReadAheadBuffer buffer;      ///< of one relationships part after another
    ScannedContentTypes scannedTypes;
    ContentTypeTable types;
    std::vector<Found> parts; ///< sorted as those of the listing
    std::optional<RelationshipsParts> relationshipsParts;
    std::vector<ScannedRelationship> scanned;
};

PackageListing::PackageListing() : documents(std::make_shared<Documents>()) {
}

std::optional<PackageListing> PackageListing::read(interfaces::IPhysicalPackage& store,
                                                   std::pmr::memory_resource& memory) {
    PackageListing listing;
    try {
        if (Reader(store, memory, listing).run())
            return listing;
    } catch (const Exception&) { // NOLINT(bugprone-empty-catch): `Package` tells what it is
    }
    return std::nullopt;
}

bool PackageListing::readCoreProperties(CoreProperties& properties) const {
    if (coreProperties == NONE)
        return true;
    if (coreProperties == LEFT)
        return false;
    const ListedPart& part = listedParts[coreProperties];
    interfaces::IPhysicalInputStream* content = nullptr;
    try {
        content = part.content->getInputStream();
    } catch (const Exception&) {
        return false;
    }
    if (content == nullptr)
        return false;
    PhysicalInputStream stream(content);
    try {
        CorePropertiesSerializer(documents->budget).read(stream, properties);
        return true;
    } catch (Exception& e) {
        e.addDetails(std::string(part.name));
        e.setPart(std::string(part.name));
        throw;
    }
}

} // namespace opc::model
