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

/// Everything that has relationships: the base of `Package` and of `Part`.
///
/// The relationships part of a source comes with its first relationship and goes with the last; the package
/// writes it when it is closed. Copies of a `Part` share one set of relationships. All handles of one package
/// belong to one thread at a time.
///
/// Relationships are found by the names of their elements without a namespace prefix. A relationships part with
/// other elements keeps them: the operations that change relationships then raise `InvalidRelationshipContent`,
/// and so does what changes the content types, a first and a last relationship included, with
/// `InvalidContentTypeStream` where it is the content types stream that has such elements. Nothing has changed
/// then. `opc::physical::LenientPackage` makes these elements readable.
///
/// What a store keeps of a relationships part without giving it to read (`interfaces::IKeptRelationships`) counts in
/// four ways: its IDs are used, the part stays when the last relationship that was read goes, `hasUnreadRelationships`
/// tells of it, and the store may say why nothing can be changed, which `InvalidRelationshipContent` repeats.
///
/// Each operation below raises `InvalidObject` if the part has gone, and then `PackageNotOpen` if the package
/// isn't open; what changes relationships then raises `PackageReadOnly` in a package opened to read.
class OPC_MODEL_EXPORT RelationshipSource {
public:
    /// Adds a relationship to a part of this package; the part need not exist.
    ///
    /// What a relationships part can't hold is refused, since the part couldn't be read again: type and target must be
    /// values of `xsd:anyURI` by the very check of reading, and blanks, which reading folds, stand one by one between
    /// other characters. Nor may they or the ID take more than 1 MiB as they are written.
    /// @param type    what the relationship means; not empty, and a URI
    /// @param target  a part name, or a reference relative to this source; kept and written in relative form
    /// @param id      an `xsd:ID` not yet used by this source; empty to have one made (rId1, rId2, …)
    /// @throws InvalidRelationshipTarget  the target is absolute, no part name [M1.*], this source, a
    ///                                    relationships part [M1.25], or can't be held
    /// @throws UnsupportedRelativize      the target has the very path of this source
    /// @throws InvalidRelationshipType, InvalidRelationshipID, RelationshipAlreadyExists
    /// @throws InvalidCorePropertiesRelationships  the package has a core properties relationship [M4.1]
    /// @throws PartAlreadyExists  another part has the relationships part's name, in another letter case
    /// @throws PartCreateFailed   the physical layer can't make the relationships part
    Relationship createInternalRelationship(const std::u16string& type, const URI& target,
                                            const std::u16string& id = std::u16string());

    /// Adds a relationship to something outside the package. Raises what `createInternalRelationship` does.
    /// @param target  any IRI but the empty one, backslashes allowed in place of slashes; stored and written as it
    ///                is
    /// @throws InvalidRelationshipTarget  the target is no IRI, or can't be held
    Relationship createExternalRelationship(const std::u16string& type, const std::u16string& target,
                                            const std::u16string& id = std::u16string());

    /// Also deletes the relationships part, if this was the last one.
    /// @throws PackageCreateOnly     the package is being created
    /// @throws RelationshipNotFound
    /// @throws PartDeleteFailed      the relationships part can't be deleted. The relationship has gone
    ///                               from here, but stands in the package when it is opened again
    void deleteRelationship(const std::u16string& id);

    /// @throws RelationshipNotFound
    Relationship getRelationshipByID(const std::u16string& id) const;

    bool hasRelationship(const std::u16string& id) const;

    /// All relationships in the order of their IDs, code unit by code unit (rId10 stands before rId2).
    /// @throws InvalidSignature  managed relationships are left out, and the signatures can't be read
    Enumerator<std::vector<Relationship>> getRelationships(ExcludeMode mode = ExcludeMode::ExcludeNone) const;

    /// Those of one type, letter case counting, in the order of their IDs; managed ones included.
    Enumerator<std::vector<Relationship>> getRelationshipsByType(const std::u16string& type) const;

    /// Whether the relationships part holds elements that weren't read, as they have a namespace prefix or stand in
    /// the wrong place, or as the store doesn't give them. Other programs may take them for relationships.
    bool hasUnreadRelationships() const;

    /// Whether `id` is an `xsd:ID`, by the names of XML 1.0 (Fifth Edition) up to U+FFFF and without the
    /// colon.
    static bool isValidID(const std::u16string& id);

    /// Whether `target` is an IRI once its backslashes are slashes. The empty text is one. Creating a relationship
    /// asks for more.
    static bool isValidTarget(const std::u16string& target);

protected:
    struct Impl;

    explicit RelationshipSource(const URI& sourceURI);
    /// @param state  which may be that of a derived class
    explicit RelationshipSource(std::shared_ptr<Impl> state);
    RelationshipSource(const RelationshipSource&) = default;
    RelationshipSource& operator=(const RelationshipSource&) = default;
    virtual ~RelationshipSource();

    virtual bool isValid() const = 0;
    virtual bool isOpen() const = 0;
    virtual bool isReadOnly() const = 0;
    virtual bool isCreateOnly() const = 0;
    virtual Package& getPackage() const = 0;

    /// The last check of a relationship that is to be created. Raises to refuse it.
    virtual void doVerifyRelationship(const std::u16string& id, const std::u16string& type,
                                      const std::u16string& target);

    /// Writes the relationships part, if there are relationships that it doesn't hold yet.
    void flush();

    /// Starts anew: no relationships, no relationships part, and generated IDs from rId1 on.
    void reset();

    /// @param part   the relationships part of this source, or null
    /// @param isNew  if false, the relationships are read from the part
    /// @throws InvalidRelationshipContent
    void setPhysicalRelationshipPart(interfaces::IPhysicalPart* part, bool isNew);
    interfaces::IPhysicalPart* getPhysicalRelationshipPart() const;

    /// The relationships part has been deleted, but the relationships stay.
    void forgetPhysicalRelationshipPart();

    /// Makes a new relationships part if the one that these relationships had has been deleted.
    /// @throws InvalidRelationshipContent  that one held elements that weren't read
    void restoreRelationshipPart();

    /// @throws InvalidRelationshipContent  the relationships part holds elements that weren't read: it would
    ///                                     lose them if it were written anew. Or the store says that it can't be
    ///                                     changed
    void throwIfRelationshipsFixed() const;

    void throwIfInvalid() const;
    void throwIfNotOpen() const;
    void throwIfReadOnly() const;
    void throwIfCreateOnly() const;

    Impl& getState() const noexcept { return *impl; }

private:
    void throwIfNotReadable() const;
    void throwIfNotWritable() const;
    std::u16string verifyRelationship(const std::u16string& id, const std::u16string& type,
                                      const std::u16string& target, TargetMode targetMode);
    void throwIfPartCanNotHold(const std::u16string& type, const std::u16string& target,
                               TargetMode targetMode) const;
    std::u16string generateID();
    Relationship withRelationshipPart(const Relationship& added);
    void createRelationshipPart();

    std::shared_ptr<Impl> impl;
};

} // namespace opc::model
