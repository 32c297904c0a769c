#pragma once

#include <opc/model/ContentType.hpp>
#include <opc/model/Export.hpp>
#include <opc/model/URI.hpp>

#include <string>

namespace opc::model {

class CoreProperties;
class Package;
class Part;
class RelationshipSource;

/// The constants of the Open Packaging Conventions, and operations on packages that use them.
///
/// All functions are static. The constants can be used from any thread; each call makes a new value. The operations on
/// packages use the public functions of `Package`, pass on their exceptions, and belong to the thread of the package. To
/// call them, also include `<opc/model/CoreProperties.hpp>` and `<opc/model/Package.hpp>`.
class OPC_MODEL_EXPORT PackageHelper {
public:
    PackageHelper() = delete;

    /// "/", the source of the package's own relationships.
    static URI getPackageRootURI();

    /// The name of the core properties part, unless an application chooses another one.
    static URI getCorePropertiesURI();

    static ContentType getCorePropertiesContentType();
    static std::u16string getCorePropertiesRelationshipType();

    /// The content type of every relationships part.
    static ContentType getRelationshipContentType();

    static std::u16string getThumbnailRelationshipType();

    /// "/metadata/thumbnail" with an extension.
    /// @param extension  with or without the dot; empty for no extension
    /// @throws InvalidURI  the result isn't a URI
    static URI getThumbnailURI(const std::u16string& extension);

    /// @name Core properties
    /// Reading and writing a document of the usual form takes microseconds. For other documents each call compiles the
    /// schemas again, which takes about a millisecond: read once and keep the value.
    /// @{

    /// Reads the core properties part. The package's first relationship of type `getCorePropertiesRelationshipType`
    /// leads to it.
    /// @return the core properties; empty if there is no such relationship
    /// @throws PackageNotOpen
    /// @throws InvalidPartContent  the part isn't valid, or breaks one of the rules [M4.2] to [M4.5]
    /// @throws PartNotFound, InvalidPartName, and the exceptions of `Relationship::getTargetURI`: the relationship
    ///         doesn't lead to a part
    static CoreProperties getCoreProperties(const Package& package);

    /// Writes all core properties: fields that are absent in `properties` are dropped. To keep fields, read the core
    /// properties, change them and write them. If the package has no core properties part, it is created at
    /// `getCorePropertiesURI` with its relationship.
    ///
    /// Call this once while the package is open: a second call would append a second document to the part.
    /// @throws PackageNotOpen, PackageReadOnly
    /// @throws InvalidRelationshipContent, InvalidContentTypeStream  the part must be created, and the relationships
    ///                             part or the content types stream has elements that weren't read. Nothing has changed
    /// @throws PartAlreadyExists   a part with this name exists, but no relationship leads to it
    /// @throws InvalidPartContent  a value can't be written, or wouldn't be read back unchanged: control characters in a
    ///                             text, a text that isn't a language tag, a time outside the years 1400 to 9999.
    ///                             Nothing has changed
    /// @throws PartNotFound, InvalidPartName, and the exceptions of `Relationship::getTargetURI`: the relationship
    ///         doesn't lead to a part
    static void createOrUpdateCoreProperties(Package& package, const CoreProperties& properties);

    /// Whether the package has a core properties relationship that doesn't lead to a part: the part doesn't exist, the
    /// target is outside the package, or the target isn't a part name. Then the core properties can't be read.
    /// @throws PackageNotOpen
    static bool hasDanglingCoreProperties(const Package& package);

    /// Does the same as `createOrUpdateCoreProperties`, also if the core properties relationship doesn't lead to a part.
    /// Then it creates the part that the relationship names. If a part can't have this name, it creates the part at
    /// `getCorePropertiesURI` and replaces the relationship.
    /// @throws PackageCreateOnly  the relationship doesn't lead to a part, and the package was opened `CreateOnly`
    /// @throws as `createOrUpdateCoreProperties`, except the exceptions for a relationship that doesn't lead to a part
    static void mendCoreProperties(Package& package, const CoreProperties& properties);

    /// Deletes the core properties part and its relationship. Does nothing if there is no relationship.
    /// @throws as `deleteRelationshipsAndTargets`
    static void deleteCoreProperties(Package& package);

    /// @}

    /// Deletes each relationship of the package that has this type, and the part that it leads to. At the first failure
    /// it stops: the relationships before and their targets are deleted, and also the relationship whose target fails.
    /// @throws PackageNotOpen, PackageReadOnly, PackageCreateOnly
    /// @throws InvalidRelationshipContent, InvalidContentTypeStream  the relationships part or the content types
    ///                       stream has elements that weren't read. Nothing has changed
    /// @throws PartNotFound  a target isn't a part of the package, or was deleted already with another relationship
    /// @throws InvalidPartName, and the exceptions of `Relationship::getTargetURI`: a target is outside the package
    static void deleteRelationshipsAndTargets(Package& package, const std::u16string& type);

    /// Does the same for the relationships of `part`.
    /// @throws InvalidObject  the part was deleted, or the package was closed
    static void deleteRelationshipsAndTargets(Package& package, Part& part, const std::u16string& type);

private:
    static void deleteWithTargets(Package& package, RelationshipSource& source, const std::u16string& type);
};

} // namespace opc::model
