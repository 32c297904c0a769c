#include "Reading.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
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
    if (relationship.getTargetMode() == TargetMode::External)
        return false;
    try {
        return package.hasPart(PartName(relationship.getTargetURI().getPath()));
    } catch (const Exception&) {
        return false; // no part can have such a name
    }
}

ScannedRelationships describe(const Package& package, const RelationshipSource& source, std::string name) {
    ScannedRelationships described{std::move(name), {}};
    const auto relationships = source.getRelationships();
    described.all.reserve(relationships.size());
    for (const Relationship& relationship : relationships)
        described.all.push_back({toUDEString(relationship.getID()), toUDEString(relationship.getType()),
                                 toUDEString(relationship.getTarget()),
                                 relationship.getTargetMode() == TargetMode::External,
                                 leadsToPart(package, relationship)});
    return described;
}

void listParts(const Package& package, unsigned what, Result& result) {
    std::vector<ScannedRelationships> relationships;
    if ((what & RELATIONSHIPS) != 0)
        relationships.push_back(describe(package, package, "/"));
    std::vector<ScannedPart> parts;
    const auto all = package.getParts();
    parts.reserve(all.size());
    for (const Part& part : all) {
        ScannedPart described{toUDEString(part.getName().toString()),
                              toUDEString(part.getContentType().toString()), part.getSize().value_or(0),
                              part.getRelationships().size()};
        if ((what & RELATIONSHIPS) != 0 && described.relationships != 0)
            relationships.push_back(describe(package, part, described.name));
        parts.push_back(std::move(described));
    }
    if ((what & PARTS) != 0)
        result.parts = std::move(parts);
    if ((what & RELATIONSHIPS) != 0)
        result.relationships = std::move(relationships);
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

} // namespace

std::string resolveTarget(const std::string& source, const std::string& target) {
    const URI uri(toString(target, true));
    return toUDEString((uri.hasAbsolutePath() ? uri : resolve(URI(toString(source, true)), uri)).toString());
}

void readByModel(const Source& source, const ScanOptions& options, Result& result) {
    ZipPackage archive = makeArchive(source, options);
    physical::LenientPackage lenient(archive);
    IPhysicalPackage& store = options.strict ? static_cast<IPhysicalPackage&>(archive) : lenient;
    Package package(store);
    std::optional<model::DigitalSignatureManager> manager;
    if ((options.what & SIGNATURES) != 0)
        manager.emplace(package);
    openPackage(package, archive, options, result);
    if ((options.what & (PARTS | RELATIONSHIPS)) != 0)
        listParts(package, options.what, result);
    if ((options.what & PROPERTIES) != 0)
        readProperties(package, result);
    if (manager)
        result.signatures = readSignatures(*manager, archive, options);
    result.hidden = store.getOddities();
}

} // namespace opc::scanning
