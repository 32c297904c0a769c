#include <opc/model/PackageHelper.hpp>

#include "coreproperties/CorePropertiesSerializer.hpp"
#include "package/StreamRewinder.hpp"
#include "xml/DocumentOutput.hpp"

#include <opc/model/CoreProperties.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/StandardPartInfo.hpp>

#include <optional>

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

} // namespace

CoreProperties PackageHelper::getCoreProperties(const Package& package) {
    CoreProperties properties;
    const Relationships relationships = findCoreProperties(package);
    if (relationships.empty())
        return properties;
    const Part part = getTarget(package, relationships);
    CorePropertiesSerializer serializer(package.getDocumentBudget());
    InputStream& stream = part.getInputStream();
    const StreamRewinder rewinder(stream);
    serializer.read(stream, properties);
    return properties;
}

void PackageHelper::createOrUpdateCoreProperties(Package& package, const CoreProperties& properties) {
    const Relationships relationships = findCoreProperties(package);
    std::optional<Part> part;
    if (!relationships.empty())
        part = getTarget(package, relationships);
    package.throwIfReadOnly();
    if (!part)
        package.throwIfRelationshipsFixed(); // the relationship comes behind the part: it must not fail
    CorePropertiesSerializer serializer(package.getDocumentBudget());
    const std::string document = serializer.compose(properties); // before anything changes
    if (!part)
        part = createCoreProperties(package);
    writeDocument(document, part->getOutputStream());
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
    package.throwIfContentTypesFixed(); // before the first relationship goes without its target
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
