#include <opc/model/PackageHelper.hpp>

#include "coreproperties/CorePropertiesSerializer.hpp"
#include "package/PackageImpl.hpp"
#include "values/StreamRewinder.hpp"
#include "xml/DocumentOutput.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/CoreProperties.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/StandardPartInfo.hpp>

#include <optional>

namespace opc::model {

namespace {

using Relationships = Enumerator<std::vector<Relationship>>;

Relationships findCoreProperties(const Package& package) {
    return package.getRelationshipsByType(PackageHelper::getCorePropertiesRelationshipType());
}

/// The part that the first of `relationships` leads to. A failure names the relationship.
Part getTarget(const Package& package, const Relationships& relationships) {
    const Relationship first = *relationships.begin();
    try {
        return package.getPart(PartName(first.getTargetURI()));
    } catch (Exception& e) {
        const std::string id = toUDEString(first.getID());
        e.addDetails("the core properties relationship " + id + " leads to " +
                     toUDEString(first.getTarget()));
        e.setRelationship(id);
        throw;
    }
}

Part createPart(Package& package, const URI& name) {
    return package.createPart(PartName(name), PackageHelper::getCorePropertiesContentType(),
                              StandardPartInfo());
}

void relate(Package& package) {
    package.createInternalRelationship(PackageHelper::getCorePropertiesRelationshipType(),
                                       PackageHelper::getCorePropertiesURI());
}

/// Creates the part that a relationship leads to. Returns nothing if that isn't possible.
std::optional<Part> createTarget(Package& package, const Relationship& relationship) {
    if (relationship.getTargetMode() == TargetMode::External)
        return std::nullopt;
    try {
        return createPart(package, relationship.getTargetURI());
    } catch (const Exception&) { // try another name
        return std::nullopt;
    }
}

/// Creates a part for a relationship that leads to no part, or creates both.
Part mend(Package& package, const Relationship& dangling) {
    if (std::optional<Part> target = createTarget(package, dangling))
        return *target;
    Part part = createPart(package, PackageHelper::getCorePropertiesURI());
    package.deleteRelationship(dangling.getID());
    relate(package);
    return part;
}

} // namespace

CoreProperties PackageHelper::getCoreProperties(const Package& package) {
    CoreProperties properties;
    const Relationships relationships = findCoreProperties(package);
    if (relationships.empty())
        return properties;
    const Part part = getTarget(package, relationships);
    CorePropertiesSerializer serializer(package.state().documentBudget);
    try {
        InputStream& stream = part.getInputStream();
        const StreamRewinder rewinder(stream);
        serializer.read(stream, properties);
        return properties;
    } catch (Exception& e) {
        e.addDetails(toUDEString(part.getName().toString()));
        e.setPart(toUDEString(part.getName().toString()));
        throw;
    }
}

bool PackageHelper::hasDanglingCoreProperties(const Package& package) {
    const Relationships relationships = findCoreProperties(package);
    if (relationships.empty())
        return false;
    try {
        getTarget(package, relationships);
        return false;
    } catch (const Exception&) {
        return true;
    }
}

void PackageHelper::createOrUpdateCoreProperties(Package& package, const CoreProperties& properties) {
    const Relationships relationships = findCoreProperties(package);
    std::optional<Part> part;
    if (!relationships.empty())
        part = getTarget(package, relationships);
    package.throwIfReadOnly();
    if (!part)
        package.throwIfRelationshipsFixed(); // the relationship is created after the part, and must not fail
    CorePropertiesSerializer serializer(package.state().documentBudget);
    const std::string document = serializer.write(properties); // before anything changes
    if (!part) {
        part = createPart(package, getCorePropertiesURI());
        relate(package);
    }
    writeDocument(document, part->getOutputStream());
}

void PackageHelper::mendCoreProperties(Package& package, const CoreProperties& properties) {
    if (!hasDanglingCoreProperties(package)) {
        createOrUpdateCoreProperties(package, properties);
        return;
    }
    package.throwIfReadOnly();
    package.throwIfCreateOnly();
    package.throwIfRelationshipsFixed(); // the relationship may be replaced after the part, and must not fail
    CorePropertiesSerializer serializer(package.state().documentBudget);
    const std::string document = serializer.write(properties); // before anything changes
    writeDocument(document, mend(package, *findCoreProperties(package).begin()).getOutputStream());
}

void PackageHelper::deleteCoreProperties(Package& package) {
    deleteRelationshipsAndTargets(package, getCorePropertiesRelationshipType());
}

void PackageHelper::deleteWithTargets(Package& package, RelationshipSource& source,
                                      const std::u16string& type) {
    const Relationships relationships = source.getRelationshipsByType(type);
    if (relationships.empty())
        return;
    package.throwIfReadOnly();
    package.throwIfCreateOnly();
    package.state().contentTypeSource->throwIfFixed(); // before a relationship is deleted without its target
    for (const Relationship& relationship : relationships) {
        source.deleteRelationship(relationship.getID());
        package.deletePart(PartName(relationship.getTargetURI()));
    }
}

void PackageHelper::deleteRelationshipsAndTargets(Package& package, const std::u16string& type) {
    deleteWithTargets(package, package, type);
}

void PackageHelper::deleteRelationshipsAndTargets(Package& package, Part& part, const std::u16string& type) {
    deleteWithTargets(package, part, type);
}

} // namespace opc::model
