#pragma once

#include <opc/interfaces/IgnoredItem.hpp>
#include <opc/interfaces/OpenMode.hpp>
#include <opc/model/Enumerator.hpp>
#include <opc/model/ExcludeMode.hpp>
#include <opc/model/Export.hpp>
#include <opc/model/Part.hpp>
#include <opc/model/RelationshipSource.hpp>
#include <opc/model/XmlLimits.hpp>

#include <string>
#include <vector>

namespace opc::interfaces {
class IPhysicalPackage;
class IPhysicalPartInfo;
} // namespace opc::interfaces

namespace opc::model {

class ContentType;
class DataManager;
class PartName;

/// A package in the Open Packaging Conventions: the root of the object model.
///
/// The application creates a store, which holds the bytes, and passes it to the package. The package gives access to its
/// parts and, through the base class, to its own relationships, whose source is the package root "/". Nothing is written
/// before `close(false)`, and the destructor writes nothing. A closed package can be opened again.
///
/// Use a package, all handles from it and its data managers from one thread at a time.
class OPC_MODEL_EXPORT Package : public RelationshipSource {
public:
    /// Creates a closed package. It doesn't access the store yet.
    /// @param physical  the store; not owned, must outlive this object
    /// @param limits    limits on the XML that the library itself reads from the package and writes into it
    explicit Package(interfaces::IPhysicalPackage& physical, const XmlLimits& limits = {});
    Package(const Package&) = delete;
    Package& operator=(const Package&) = delete;

    /// Closes the package and drops all changes. Throws nothing.
    ~Package() override;

    /// Opens the store and reads content types, parts and relationships.
    ///
    /// After a failure the package is closed and empty. If closing it fails too, the exception is that of the second
    /// failure, and the package stays open if its parts had been read.
    ///
    /// @throws PackageAlreadyOpen
    /// @throws PackageNotFound      the package doesn't exist
    /// @throws PackageOpenFailed    the store fails in another way; `code()` gives the cause
    /// @throws InvalidContentTypeStream, InvalidContentType, ContentTypeNotFound  the content types are invalid [M1.2]
    /// @throws InvalidPartName, InvalidURI    a part name breaks the rules [M1.1] to [M1.10]
    /// @throws InvalidRelationshipContent     a relationships part is invalid
    /// @throws InconsistentPackage            a relationships part has no source
    /// @throws InvalidCorePropertiesRelationships  there is more than one core properties relationship [M4.1]
    /// @throws opc::Exception       the store gives no stream, or a data manager throws
    void open(interfaces::OpenMode mode);

    /// Writes all changes, unless the package was opened `ReadOnly`, and closes the package. All handles become invalid.
    /// Does nothing if the package isn't open.
    ///
    /// After a failure the package is still open, with all its parts. Remove the cause and close it again, or abandon it.
    /// One thing isn't repeated then: a content types stream whose own `close` failed isn't written again.
    ///
    /// @param abandon  true to drop all changes instead
    /// @throws PackagePermissionDenied  the store has no permission to write
    /// @throws PackageCloseFailed       the store fails in another way; `code()` gives the cause
    /// @throws InvalidContentTypeStream, InvalidPartContent  a document can't be written
    /// @throws InvalidRelationshipContent  deleting a part failed, and its relationships part with elements that weren't
    ///                                     read is lost: delete the part again, or abandon the package
    /// @throws opc::Exception       a stream fails, or a data manager throws
    void close(bool abandon);

    /// Creates an empty part.
    /// @param name         the name of the new part. It must not be in use, derived from the name of another part or the
    ///                     other way round [M1.11], the root, or the name of a relationships part in any letter case
    /// @param contentType  the media type of the content
    /// @param partInfo     hints for the store; usually `StandardPartInfo()`
    /// @return a handle on the new part
    /// @throws PackageNotOpen, PackageReadOnly, PartHasRelationshipName, PartAlreadyExists,
    ///         PartIsDerivedFromExistingPartName, PartCreateFailed
    /// @throws InvalidPartName     the name is the root, is longer than 1 MiB, or has characters that a part name can't
    ///                             have [M1.6]. Parts from a file may have such characters, and work
    /// @throws InvalidContentType  the content type couldn't be read again: its written form is longer than 1 MiB, or the
    ///                             value of a parameter has a double quote or ends in a backslash before another value
    ///                             in quotes
    /// @throws InvalidContentTypeStream  the content types stream has elements that weren't read, because they have a
    ///                                   namespace prefix, and would lose them. Nothing has changed
    Part createPart(const PartName& name, const ContentType& contentType,
                    const interfaces::IPhysicalPartInfo& partInfo);

    /// Deletes a part and its relationships. Relationships of other sources that lead to it stay.
    /// @throws PackageNotOpen, PackageReadOnly, PackageCreateOnly, PartNotFound
    /// @throws InvalidContentTypeStream  as `createPart`
    /// @throws PartDeleteFailed  the store fails. The part stays in the package, even if its content or its relationships
    ///                           part is already deleted: delete it again, or abandon the package
    void deletePart(const PartName& name);

    /// Gives a part another content type. Only the content types stream changes: the store keeps the content as it is. The
    /// part gets an `Override`, unless the `Default` of its extension has this content type.
    /// @throws PackageNotOpen, PackageReadOnly, PartNotFound
    /// @throws InvalidPartStream         deleting the part has failed, and its content is gone
    /// @throws InvalidContentType, InvalidContentTypeStream  as `createPart`
    /// @throws ContentTypeNotFound       the store has no content types stream: it keeps the type of each part with the
    ///                                   part, from its creation
    void setContentType(const PartName& name, const ContentType& contentType);

    /// @return a handle on the part with this name
    /// @throws PackageNotOpen, PartNotFound
    Part getPart(const PartName& name) const;

    /// Whether there is a part with this name. False for relationships parts: they belong to their source.
    /// @throws PackageNotOpen
    bool hasPart(const PartName& name) const;

    /// @param mode  `ExcludeManaged` leaves out the parts of data managers
    /// @return all parts except relationships parts, sorted by name, ignoring letter case
    /// @throws PackageNotOpen
    /// @throws InvalidSignature  `mode` is `ExcludeManaged`, and the signatures can't be read
    Enumerator<std::vector<Part>> getParts(ExcludeMode mode = ExcludeMode::ExcludeNone) const;

    /// Whether `name` is derived from the name of a part, or the other way round [M1.11]: `/a` and `/a/b`. An equal name
    /// doesn't count.
    /// @param existing  if the result is true, receives the shorter one of the two names in lower case
    bool isPartDerivedFromExistingPartName(const PartName& name, std::u16string& existing) const;

    /// Whether the content types stream has elements that the model ignores and other programs may use. Such elements
    /// have a namespace prefix, are in the wrong place, or give a second content type to something, or a content type
    /// of another kind to a relationships part.
    /// @throws PackageNotOpen
    bool hasUnreadContentTypes() const;

    /// @return what the store contains that another program could take for content beside the parts, or for another part
    /// @throws PackageNotOpen
    std::vector<interfaces::IgnoredItem> getIgnoredItems() const;

    bool isOpen() const override;
    bool isReadOnly() const override;

    /// Whether the package was opened `CreateOnly`; true also before the first `open`.
    bool isCreateOnly() const override;

protected:
    void flush();

private:
    friend class DataManager;
    friend class DigitalSignatureManager;
    friend class PackageHelper;
    friend class PartSearch;
    friend class RelationshipSource;
    struct Impl;

    bool isValid() const override;
    Package& getPackage() const override;
    void doVerifyRelationship(const std::u16string& id, const std::u16string& type,
                              const std::u16string& target) override;

    Impl& state() const noexcept;
};

} // namespace opc::model
