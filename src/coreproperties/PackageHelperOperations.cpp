#include <opc/model/PackageHelper.hpp>

#include "coreproperties/CorePropertiesSerializer.hpp"
#include "package/StreamRewinder.hpp"

#include <opc/model/CoreProperties.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/StandardPartInfo.hpp>

namespace opc::model {

namespace {

using Relationships = Enumerator<std::vector<Relationship>>;

Relationships findCoreProperties(const Package& package) {
    return package.getRelationshipsByType(PackageHelper::getCorePropertiesRelationshipType());
}

/// The part that the first of `relationships` leads to.
Part getTarget(const Package& package, const Relationships& relationships) {
    return package.getPart(PartName(relationships.begin()->getTargetURI()));
}

Part createCoreProperties(Package& package) {
    const URI uri = PackageHelper::getCorePropertiesURI();
    Part part =
        package.createPart(PartName(uri), PackageHelper::getCorePropertiesContentType(), StandardPartInfo());
    package.createInternalRelationship(PackageHelper::getCorePropertiesRelationshipType(), uri);
    return part;
}

void deleteWithTargets(Package& package, RelationshipSource& source, const std::u16string& type) {
    for (const Relationship& relationship : source.getRelationshipsByType(type)) {
        source.deleteRelationship(relationship.getID());
        package.deletePart(PartName(relationship.getTargetURI()));
    }
}

} // namespace

CoreProperties PackageHelper::getCoreProperties(const Package& package) {
    CoreProperties properties;
    const Relationships relationships = findCoreProperties(package);
    if (relationships.empty())
        return properties;
    const Part part = getTarget(package, relationships);
    CorePropertiesSerializer serializer([&package] { package.getPackage().keepXerces(); });
    InputStream& stream = part.getInputStream();
    const StreamRewinder rewinder(stream);
    serializer.read(stream, properties);
    return properties;
}

void PackageHelper::createOrUpdateCoreProperties(Package& package, const CoreProperties& properties) {
    const Relationships relationships = findCoreProperties(package);
    const Part part =
        relationships.empty() ? createCoreProperties(package) : getTarget(package, relationships);
    CorePropertiesSerializer serializer([&package] { package.keepXerces(); });
    serializer.write(properties, part.getOutputStream());
}

void PackageHelper::deleteCoreProperties(Package& package) {
    deleteRelationshipsAndTargets(package, getCorePropertiesRelationshipType());
}

void PackageHelper::deleteRelationshipsAndTargets(Package& package, const std::u16string& type) {
    deleteWithTargets(package, package, type);
}

void PackageHelper::deleteRelationshipsAndTargets(Package& package, Part& part, const std::u16string& type) {
    deleteWithTargets(package, part, type);
}

} // namespace opc::model
