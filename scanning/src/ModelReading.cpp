#include "PartLookup.hpp"
#include "Reading.hpp"
#include "TextPool.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <algorithm>
#include <utility>

namespace opc::scanning {

namespace {

using interfaces::IPhysicalPackage;
using interfaces::OpenMode;
using model::Package;
using model::Part;
using model::PartName;
using model::Relationship;
using model::RelationshipSource;
using model::TargetMode;
using model::URI;
using physical::ZipPackage;

ZipPackage makeArchive(const Source& source, const ScanOptions& options) {
    physical::ZipOptions limits = options.limits;
    limits.lenient = !options.strict;
    return source.bytes ? ZipPackage(*source.bytes, limits) : ZipPackage(source.path, limits);
}

bool leadsToPart(const Package& package, const Relationship& relationship) {
    try {
        const URI target = relationship.getTargetURI();
        return !target.hasScheme() && !target.hasAuthority() && package.hasPart(PartName(target.getPath()));
    } catch (const Exception&) {
        return false; // no part can have such a name
    }
}

using Relationships = model::Enumerator<std::vector<Relationship>>;

void describe(const Package& package, PartLookup& parts, std::string_view source,
              const Relationships& relationships, TextPool& texts,
              std::vector<ScannedRelationship>& described) {
    parts.setSource(source);
    for (const Relationship& relationship : relationships) {
        ScannedRelationship& one = described.emplace_back();
        one.source = source;
        one.id = texts.add(relationship.getID());
        one.type = texts.add(relationship.getType());
        one.target = texts.add(relationship.getTarget());
        one.isExternal = relationship.getTargetMode() == TargetMode::External;
        if (!one.isExternal) {
            const std::optional<bool> found = parts.find(one.target);
            one.exists = found ? *found : leadsToPart(package, relationship);
        }
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
        describe(package, lookup, "/", ofPackage, texts, described);
        for (const auto& [index, relationships] : ofParts)
            describe(package, lookup, parts[index].name, relationships, texts, described);
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

bool isReadWhole(const Package& package) {
    const auto parts = package.getParts();
    return !package.hasUnreadContentTypes() && !package.hasUnreadRelationships() &&
           std::none_of(parts.begin(), parts.end(),
                        [](const Part& part) { return part.hasUnreadRelationships(); });
}

void read(const Package& package, unsigned what, Result& result) {
    if ((what & (PARTS | RELATIONSHIPS)) != 0)
        listParts(package, what, result);
    if ((what & PROPERTIES) != 0)
        readProperties(package, result);
}

/// Most packages break no rule. Then the lenient view of them is that of the model itself, which takes two thirds of the
/// time.
/// @return false if something in the package needs the lenient view
bool readPlainPackage(const Source& source, const ScanOptions& options, Result& result) {
    ZipPackage archive = makeArchive(source, options);
    Package package(archive);
    try {
        package.open(OpenMode::ReadOnly);
    } catch (const Exception&) {
        return false;
    }
    if (!isReadWhole(package))
        return false;
    read(package, options.what, result);
    result.hidden = archive.getOddities();
    return true;
}

} // namespace

std::string resolveTarget(std::string_view source, std::string_view target) {
    const URI uri(toString(std::string(target), true));
    return toUDEString(
        (uri.hasAbsolutePath() ? uri : resolve(URI(toString(std::string(source), true)), uri)).toString());
}

void readByModel(const Source& source, const ScanOptions& options, Result& result) {
    if (!options.strict && (options.what & SIGNATURES) == 0 && readPlainPackage(source, options, result))
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
