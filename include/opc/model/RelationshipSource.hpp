#pragma once

#include <opc/model/Enumerator.hpp>
#include <opc/model/ExcludeMode.hpp>
#include <opc/model/Export.hpp>
#include <opc/model/Relationship.hpp>
#include <opc/model/TargetMode.hpp>
#include <opc/model/URI.hpp>

#include <memory>
#include <string>
#include <vector>

namespace opc::interfaces {
class IPhysicalPart;
}

namespace opc::model {

class Package;
class SelectableRelationships;

/// The base of everything that has relationships: `Package` and `Part`.
///
/// The relationships part of a source is created with its first relationship and deleted with its last one. The package
/// writes it when it is closed. Copies of a `Part` share their relationships. Use all handles of a package from one
/// thread at a time.
///
/// Only elements without a namespace prefix are read as relationships. A relationships part with other elements keeps
/// them, and the operations that change its relationships throw `InvalidRelationshipContent`. If the content types
/// stream has such elements, creating a first relationship and deleting a last one throw `InvalidContentTypeStream`. In
/// both cases nothing has changed. `opc::physical::LenientPackage` makes these elements readable.
///
/// A store can keep relationships that the input stream doesn't contain (`interfaces::IKeptRelationships`). Their IDs are
/// in use, their part stays when the last other relationship is deleted, and `hasUnreadRelationships` is true. The store
/// can also forbid changes; then the message of `InvalidRelationshipContent` contains its reason.
///
/// Each operation below throws `InvalidObject` if the part was deleted or the package closed, and then `PackageNotOpen`
/// if the package isn't open. An operation that changes relationships then throws `PackageReadOnly` if the package was
/// opened `ReadOnly`.
class OPC_MODEL_EXPORT RelationshipSource {
public:
    /// Creates a relationship to a part of this package. The part need not exist.
    ///
    /// A value that a relationships part can't represent is refused, because the part couldn't be read again. Type and
    /// target must be values of `xsd:anyURI`, checked as when they are read. They can have single blanks between other
    /// characters, but no blank at an end and no two blanks together, because reading folds white space. The written
    /// form of type, target and ID must not be longer than 1 MiB.
    /// @param type    a URI that says what the relationship means; not empty
    /// @param target  a part name, or a reference relative to this source; stored and written in relative form
    /// @param id      an `xsd:ID` that this source doesn't use yet; empty to generate one (rId1, rId2, …)
    /// @return the new relationship
    /// @throws InvalidRelationshipTarget  the target is absolute, isn't a part name [M1.*], is this source, is a
    ///                                    relationships part [M1.25], or can't be represented
    /// @throws UnsupportedRelativize      the target has the same path as this source
    /// @throws InvalidRelationshipType, InvalidRelationshipID, RelationshipAlreadyExists
    /// @throws InvalidCorePropertiesRelationships  the package already has a core properties relationship [M4.1]
    /// @throws PartAlreadyExists  another part has the name of the relationships part, in another letter case
    /// @throws PartCreateFailed   the store can't create the relationships part
    Relationship createInternalRelationship(const std::u16string& type, const URI& target,
                                            const std::u16string& id = std::u16string());

    /// Creates a relationship to something outside the package.
    /// @param type    as in `createInternalRelationship`
    /// @param target  an IRI; not empty. Backslashes are allowed instead of slashes. Stored and written unchanged
    /// @param id      as in `createInternalRelationship`
    /// @return the new relationship
    /// @throws InvalidRelationshipTarget  the target isn't an IRI, or can't be represented
    /// @throws as `createInternalRelationship` otherwise
    Relationship createExternalRelationship(const std::u16string& type, const std::u16string& target,
                                            const std::u16string& id = std::u16string());

    /// Gives a relationship another target, in this package or outside it. ID and type stay, and so does its place in the
    /// relationships part, if the store changes documents in their own text (`opc::physical::LenientPackage`).
    /// @param target  as in `createInternalRelationship` and `createExternalRelationship`
    /// @return the relationship as it is now; older copies keep the old target
    /// @throws RelationshipNotFound
    /// @throws InvalidRelationshipTarget, UnsupportedRelativize  as `createInternalRelationship`, and
    ///                                    `createExternalRelationship`
    /// @{
    Relationship setInternalTarget(const std::u16string& id, const URI& target);
    Relationship setExternalTarget(const std::u16string& id, const std::u16string& target);
    /// @}

    /// Gives this source, which has no relationships yet, those of another source, with their IDs, types and modes. Internal
    /// targets lead to the same parts: where both sources have another folder, the reference is made anew. A target that
    /// reading accepts is copied, whether or not it could be created.
    /// @param from  of the same package
    /// @throws RelationshipAlreadyExists   this source has relationships
    /// @throws InvalidRelationshipContent  those of `from` weren't read completely: what wasn't read would be missing
    /// @throws PartAlreadyExists, PartCreateFailed  as `createInternalRelationship`
    void copyRelationships(const RelationshipSource& from);

    /// Deletes a relationship, and the relationships part with the last relationship.
    /// @throws PackageCreateOnly     the package was opened `CreateOnly`
    /// @throws RelationshipNotFound
    /// @throws PartDeleteFailed      the relationships part can't be deleted. This source no longer has the relationship,
    ///                               but it is there again when the package is opened again
    void deleteRelationship(const std::u16string& id);

    /// @throws RelationshipNotFound
    Relationship getRelationshipByID(const std::u16string& id) const;

    bool hasRelationship(const std::u16string& id) const;

    /// @param mode  `ExcludeManaged` leaves out the relationships of data managers
    /// @return all relationships, sorted by ID, code unit by code unit (rId10 comes before rId2)
    /// @throws InvalidSignature  `mode` is `ExcludeManaged`, and the signatures can't be read
    Enumerator<std::vector<Relationship>> getRelationships(ExcludeMode mode = ExcludeMode::ExcludeNone) const;

    /// @param type  letter case matters
    /// @return the relationships of one type, sorted by ID; includes those of data managers
    Enumerator<std::vector<Relationship>> getRelationshipsByType(const std::u16string& type) const;

    /// Whether the relationships part has elements that weren't read: they have a namespace prefix, are in the wrong
    /// place, or the store leaves them out of the input stream. Other programs may read them as relationships.
    bool hasUnreadRelationships() const;

    /// Whether `id` is an `xsd:ID`: a name of XML 1.0 (Fifth Edition) with characters up to U+FFFF and without a colon.
    static bool isValidID(const std::u16string& id);

    /// Whether `target` is an IRI after its backslashes are replaced by slashes. The empty text is one. Creating a
    /// relationship requires more.
    static bool isValidTarget(const std::u16string& target);

protected:
    struct Impl;

    explicit RelationshipSource(const URI& sourceURI);
    /// @param impl  the shared state; a derived class can pass an extended one
    explicit RelationshipSource(std::shared_ptr<Impl> impl);
    RelationshipSource(const RelationshipSource&) = default;
    RelationshipSource& operator=(const RelationshipSource&) = default;
    virtual ~RelationshipSource();

    virtual bool isValid() const = 0;
    virtual bool isOpen() const = 0;
    virtual bool isReadOnly() const = 0;
    virtual bool isCreateOnly() const = 0;
    virtual Package& getPackage() const = 0;

    /// Makes the last check of a new relationship. Throws to refuse it.
    virtual void doVerifyRelationship(const std::u16string& id, const std::u16string& type,
                                      const std::u16string& target);

    /// Writes the relationships part if it has changed.
    void flush();

    /// Drops all relationships and the relationships part. Generated IDs start at rId1 again.
    void reset();

    /// @param part   the relationships part of this source, or null
    /// @param isNew  false to read the relationships from the part
    /// @throws InvalidRelationshipContent
    void setPhysicalRelationshipPart(interfaces::IPhysicalPart* part, bool isNew);
    interfaces::IPhysicalPart* getPhysicalRelationshipPart() const;

    /// Says that the store has deleted the relationships part. The relationships stay.
    void forgetPhysicalRelationshipPart();

    /// Creates a new relationships part if the old one was deleted and relationships are left.
    /// @throws InvalidRelationshipContent  the old one had elements that weren't read
    void restoreRelationshipPart();

    /// @throws InvalidRelationshipContent  the relationships part has elements that weren't read, and writing it would
    ///                                     lose them; or the store says that it can't be changed
    void throwIfRelationshipsFixed() const;

    void throwIfInvalid() const;
    void throwIfNotOpen() const;
    void throwIfReadOnly() const;
    void throwIfCreateOnly() const;

    Impl& getState() const noexcept { return *impl; }

private:
    friend class SelectableRelationships;

    void throwIfNotReadable() const;
    void throwIfNotWritable() const;
    std::u16string verifyRelationship(const std::u16string& id, const std::u16string& type,
                                      const std::u16string& target, TargetMode targetMode);
    URI relativeFormOf(const URI& target) const;
    std::u16string targetFromHere(const Relationship& relationship) const;
    void throwIfPartCanNotHoldType(const std::u16string& type) const;
    void throwIfPartCanNotHoldTarget(const std::u16string& target, TargetMode targetMode) const;
    std::u16string generateID();
    Relationship withRelationshipPart(const Relationship& added);
    void createRelationshipPart();

    std::shared_ptr<Impl> impl;
};

} // namespace opc::model
