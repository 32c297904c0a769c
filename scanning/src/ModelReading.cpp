#include "PartLookup.hpp"
#include "Reading.hpp"

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

ScannedRelationships describe(const Package& package, const PartLookup& parts,
                              const RelationshipSource& source, std::string name) {
    ScannedRelationships described{std::move(name), {}};
    const auto relationships = source.getRelationships();
    described.all.reserve(relationships.size());
    for (const Relationship& relationship : relationships) {
        ScannedRelationship& one = described.all.emplace_back();
        one.id = toUDEString(relationship.getID());
        one.type = toUDEString(relationship.getType());
        one.target = toUDEString(relationship.getTarget());
        one.isExternal = relationship.getTargetMode() == TargetMode::External;
        if (!one.isExternal) {
            const std::optional<bool> found = parts.find(described.source, one.target);
            one.exists = found ? *found : leadsToPart(package, relationship);
        }
    }
    return described;
}

void listParts(const Package& package, unsigned what, Result& result) {
    std::vector<ScannedPart> parts;
    const auto all = package.getParts();
    parts.reserve(all.size());
    for (const Part& part : all)
        parts.push_back({toUDEString(part.getName().toString()),
                         toUDEString(part.getContentType().toString()), part.getSize().value_or(0),
                         part.getRelationships().size()});
    if ((what & RELATIONSHIPS) != 0) {
        const PartLookup lookup(parts);
        std::vector<ScannedRelationships>& lists = result.relationships.emplace();
        lists.push_back(describe(package, lookup, package, "/"));
        auto described = parts.begin();
        for (const Part& part : all)
            if (const ScannedPart& row = *described++; row.relationships != 0)
                lists.push_back(describe(package, lookup, part, row.name));
    }
    if ((what & PARTS) != 0)
        result.parts = std::move(parts);
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

std::string resolveTarget(const std::string& source, const std::string& target) {
    const URI uri(toString(target, true));
    return toUDEString((uri.hasAbsolutePath() ? uri : resolve(URI(toString(source, true)), uri)).toString());
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
