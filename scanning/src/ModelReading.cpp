#include "PartLookup.hpp"
#include "Reading.hpp"
#include "TextPool.hpp"

#include "listing/PackageListing.hpp"

#include <opc/core/Exception.hpp>
#include <opc/interfaces/IPhysicalPartSize.hpp>
#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <utility>

namespace opc::scanning {

namespace {

using interfaces::IPhysicalPackage;
using interfaces::OpenMode;
using model::Package;
using model::PackageListing;
using model::Part;
using model::Relationship;
using model::TargetMode;
using physical::ZipPackage;

ZipPackage makeArchive(const Source& source, const ScanOptions& options) {
    physical::ZipOptions limits = options.limits;
    limits.lenient = !options.strict;
    return source.bytes ? ZipPackage(*source.bytes, limits) : ZipPackage(source.path, limits);
}

using Relationships = model::Enumerator<std::vector<Relationship>>;

void describe(PartLookup& parts, std::string_view source, const Relationships& relationships, TextPool& texts,
              std::vector<ScannedRelationship>& described) {
    parts.setSource(source);
    for (const Relationship& relationship : relationships) {
        ScannedRelationship& one = described.emplace_back();
        one.source = source;
        one.id = texts.add(relationship.getID());
        one.type = texts.add(relationship.getType());
        one.target = texts.add(relationship.getTarget());
        one.isExternal = relationship.getTargetMode() == TargetMode::External;
        one.exists = !one.isExternal && parts.leadsToPart(one.target);
    }
}

void listParts(const Package& package, unsigned what, Result& result) {
    TextPool texts;
    std::vector<ScannedPart> parts;
    std::vector<std::pair<std::size_t, Relationships>> ofParts; ///< of those that have some
    std::size_t count = 0;
    const auto all = package.getParts();
    parts.reserve(all.size());
    for (const Part& part : all) {
        Relationships relationships = part.getRelationships();
        parts.push_back({texts.add(part.getName().toString()), texts.add(part.getContentType().toString()),
                         part.getSize().value_or(0), relationships.size()});
        count += relationships.size();
        if ((what & RELATIONSHIPS) != 0 && !relationships.empty())
            ofParts.emplace_back(parts.size() - 1, std::move(relationships));
    }
    if ((what & RELATIONSHIPS) != 0) {
        PartLookup lookup(parts);
        const Relationships ofPackage = package.getRelationships();
        std::vector<ScannedRelationship>& described = result.relationships.emplace();
        described.reserve(ofPackage.size() + count);
        describe(lookup, "/", ofPackage, texts, described);
        for (const auto& [index, relationships] : ofParts)
            describe(lookup, parts[index].name, relationships, texts, described);
    }
    if ((what & PARTS) != 0)
        result.parts = std::move(parts);
    result.texts = texts.keeper();
}

void readProperties(const Package& package, Result& result) {
    try {
        result.properties = model::PackageHelper::getCoreProperties(package);
    } catch (const Exception& e) {
        result.propertiesFailure = scanning::describe(e, {}).message;
    }
}

/// @return false if they are left to the package
bool readProperties(const PackageListing& listing, Result& result) {
    try {
        model::CoreProperties properties;
        if (!listing.readCoreProperties(properties))
            return false;
        result.properties = std::move(properties);
    } catch (const Exception& e) {
        result.propertiesFailure = scanning::describe(e, {}).message;
    }
    return true;
}

std::uint64_t sizeOf(const interfaces::IPhysicalPart& part) {
    const auto* const known = dynamic_cast<const interfaces::IPhysicalPartSize*>(&part);
    return known == nullptr ? 0 : known->getSize();
}

void openPackage(Package& package, ZipPackage& archive, const ScanOptions& options, Result& result) {
    try {
        package.open(OpenMode::ReadOnly);
    } catch (const Exception&) {
        if ((options.what & SIGNATURES) != 0) {
            try {
                archive.open(OpenMode::ReadOnly);
                result.signatures = readStandardSignatures(archive, options);
            } catch (const Exception&) { // the first failure says more
            }
        }
        throw;
    }
}

void read(const Package& package, unsigned what, Result& result) {
    if ((what & (PARTS | RELATIONSHIPS)) != 0)
        listParts(package, what, result);
    if ((what & PROPERTIES) != 0)
        readProperties(package, result);
}

void describeParts(const PackageListing& listing, unsigned what, Result& result) {
    std::vector<ScannedPart> parts;
    parts.reserve(listing.parts().size());
    for (const PackageListing::ListedPart& part : listing.parts())
        parts.push_back({part.name, part.contentType, sizeOf(*part.content), part.relationships});
    if ((what & RELATIONSHIPS) != 0) {
        PartLookup lookup(parts);
        std::vector<ScannedRelationship>& described = result.relationships.emplace();
        described.reserve(listing.relationships().size());
        for (const auto& [source, id, type, target, isExternal] : listing.relationships()) {
            if (described.empty() || described.back().source.data() != source.data())
                lookup.setSource(source);
            described.push_back(
                {source, id, type, target, isExternal, !isExternal && lookup.leadsToPart(target)});
        }
    }
    if ((what & PARTS) != 0)
        result.parts = std::move(parts);
}

/// Most packages are of the plain form. Then the lenient view of them is what the listing says, which takes a third of the
/// time.
/// @return false if something in the package needs the lenient view
bool readPlainPackage(const Source& source, const ScanOptions& options, Result& result) {
    ZipPackage archive = makeArchive(source, options);
    try {
        archive.open(OpenMode::ReadOnly);
    } catch (const Exception&) {
        return false;
    }
    TextPool texts;
    const std::optional<PackageListing> listing = PackageListing::read(archive, texts.resource());
    if (!listing || ((options.what & PROPERTIES) != 0 && !readProperties(*listing, result)))
        return false;
    if ((options.what & (PARTS | RELATIONSHIPS)) != 0)
        describeParts(*listing, options.what, result);
    result.texts = texts.keeper();
    result.hidden = archive.getOddities();
    return true;
}

} // namespace

void readByModel(const Source& source, const ScanOptions& options, Result& result) {
    if ((options.what & SIGNATURES) == 0 && readPlainPackage(source, options, result))
        return;
    ZipPackage archive = makeArchive(source, options);
    physical::LenientPackage lenient(archive);
    IPhysicalPackage* store = &lenient;
    if (options.strict)
        store = &archive;
    Package package(*store);
    std::optional<model::DigitalSignatureManager> manager;
    if ((options.what & SIGNATURES) != 0)
        manager.emplace(package);
    openPackage(package, archive, options, result);
    read(package, options.what, result);
    if (manager)
        result.signatures = readSignatures(*manager, archive, options);
    result.hidden = store->getOddities();
}

} // namespace opc::scanning
