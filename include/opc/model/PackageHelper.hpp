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

/// What the Open Packaging Conventions fix for every package, and operations on packages that rest on it.
///
/// Static, without state. The constants are free for any thread, and each call builds a new value. The
/// operations on packages stand on the public ones of `Package`, let their exceptions pass, and run in the
/// package's thread. Whoever calls those also includes `<opc/model/CoreProperties.hpp>` and
/// `<opc/model/Package.hpp>`.
class OPC_MODEL_EXPORT PackageHelper {
public:
    PackageHelper() = delete;

    /// "/", the source of the package's own relationships.
    static URI getPackageRootURI();

    /// Where the core properties stand unless an application chooses another name.
    static URI getCorePropertiesURI();

    static ContentType getCorePropertiesContentType();
    static std::u16string getCorePropertiesRelationshipType();

    /// The content type of every relationships part.
    static ContentType getRelationshipContentType();

    static std::u16string getThumbnailRelationshipType();

    /// "/metadata/thumbnail" with an extension.
    /// @param extension  with or without its dot; empty for none
    /// @throws InvalidURI  if the extension makes no URI
    static URI getThumbnailURI(const std::u16string& extension);

    /// @name Core properties
    /// A document of the usual form is read and written within microseconds. For any other one the schemas of
    /// the part are compiled anew at each call, which takes about a millisecond: read once and keep the value.
    /// @{

    /// Reads the core properties part, which the package's first relationship of that type leads to.
    /// @return empty if there is no such relationship
    /// @throws PackageNotOpen
    /// @throws InvalidPartContent  the part isn't valid, or breaks one of the rules [M4.2] to [M4.5]
    /// @throws PartNotFound, InvalidPartName, and what `Relationship::getTargetURI` raises: the relationship
    ///         leads to no part
    static CoreProperties getCoreProperties(const Package& package);

    /// Writes the core properties part, whole: to keep fields, read them before and change what was read.
    /// A package without one gets it at `getCorePropertiesURI`, with its relationship.
    ///
    /// Call it once while the package is open. The part's output stream is asked for once and never closed,
    /// so that a second document lands behind the first one.
    /// @throws PackageNotOpen, PackageReadOnly
    /// @throws InvalidRelationshipContent, InvalidContentTypeStream  a document that would have to take up the
    ///                             new part holds elements that weren't read. Nothing has changed
    /// @throws PartAlreadyExists   a part of that name exists, but no relationship leads to it
    /// @throws InvalidPartContent  a value that XML can't hold, or that wouldn't come back as it is: control
    ///                             characters in a text, a language that is none, a time outside the years 1400 to
    ///                             9999. Nothing has changed then
    /// @throws PartNotFound, InvalidPartName, and what `Relationship::getTargetURI` raises: the relationship
    ///         leads to no part
    static void createOrUpdateCoreProperties(Package& package, const CoreProperties& properties);

    /// Whether the package has a core properties relationship that leads to no part of it: to one that has gone,
    /// out of the package, or to what is no part name. Its core properties can't be read then.
    /// @throws PackageNotOpen
    static bool hasDanglingCoreProperties(const Package& package);

    /// Does what `createOrUpdateCoreProperties` does, also where the core properties relationship leads to no
    /// part. Then the part is created under the name that the relationship leads to. Where no part can have it,
    /// the part is created at `getCorePropertiesURI`, and a new relationship takes the place of the old one.
    /// @throws PackageCreateOnly  the relationship leads to no part, and the package is being created
    /// @throws as `createOrUpdateCoreProperties` but for the last three
    static void mendCoreProperties(Package& package, const CoreProperties& properties);

    /// Deletes the core properties part and its relationship; does nothing if there is none.
    /// @throws as `deleteRelationshipsAndTargets`
    static void deleteCoreProperties(Package& package);

    /// @}

    /// Deletes each relationship of `type` that the package has, and the part that it leads to. A failure
    /// stops there: what stood before it is gone, and so is the relationship whose target fails.
    /// @throws PackageNotOpen, PackageReadOnly, PackageCreateOnly
    /// @throws InvalidRelationshipContent, InvalidContentTypeStream  the relationships part or the content types
    ///                       stream holds elements that weren't read. Nothing has changed
    /// @throws PartNotFound  a target is no part of the package, or another relationship led to it as well
    /// @throws InvalidPartName, and what `Relationship::getTargetURI` raises: a target lies outside
    static void deleteRelationshipsAndTargets(Package& package, const std::u16string& type);

    /// The same for the relationships of `part`.
    /// @throws InvalidObject  the part has gone
    static void deleteRelationshipsAndTargets(Package& package, Part& part, const std::u16string& type);

private:
    static void deleteWithTargets(Package& package, RelationshipSource& source, const std::u16string& type);
};

} // namespace opc::model
