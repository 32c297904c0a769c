#pragma once

#include <opc/editing/Change.hpp>
#include <opc/editing/Export.hpp>
#include <opc/editing/Signatures.hpp>

#include <opc/core/InputStream.hpp>
#include <opc/model/ContentType.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/Relationship.hpp>
#include <opc/model/TargetMode.hpp>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace opc::model {
class Package;
class RelationshipSource;
} // namespace opc::model

namespace opc::editing {

/// A package that is being changed, and the list of its changes.
///
/// Its operations are single changes; each is passed to the model and then added to the list. What takes several is a
/// function over an editor, such as `movePart`. An exception is that of the model: the change wasn't made, and isn't in the
/// list. Nothing is written before `Package::close(false)`; to try changes out, make them and abandon the package.
///
/// Sources of relationships are part names, or "/" for the package itself. Use it in the thread of the package.
class OPC_EDITING_EXPORT Editor {
public:
    /// Reads the signatures of the package.
    /// @param package  open for changes, and not changed yet; must outlive this object
    /// @throws PackageNotOpen
    explicit Editor(model::Package& package);

    /// For a package that has been changed without this object, such as by `mend`.
    /// @param signatures  of the package before
    /// @param changes     made since
    Editor(model::Package& package, Signatures signatures, std::vector<Change> changes);

    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;

    /// What the operations here can't do is done to the package itself, and told by `record`.
    model::Package& package() const { return edited; }

    /// In the order in which they were made.
    const std::vector<Change>& changes() const { return made; }

    /// Adds a change that was made to the package in another way.
    void record(Change change) { made.push_back(std::move(change)); }

    using Time = std::chrono::system_clock::time_point;

    /// The time that is now for changes of properties: that of the system, unless `setNow` has set another one.
    Time now() const { return fixedNow ? *fixedNow : std::chrono::system_clock::now(); }
    void setNow(Time time) { fixedNow = time; }

    /// The signatures that the package had before the changes.
    const Signatures& signatures() const { return signaturesBefore; }

    /// The signature parts of those that the changes so far break.
    std::vector<std::string> brokenSignatures() const { return signaturesBefore.brokenBy(made); }

    /// The same for those that go on to hold and don't cover what the changes have added.
    std::vector<std::string> narrowedSignatures() const { return signaturesBefore.narrowedBy(made); }

    /// @throws BreaksSignatures  there are some
    void throwIfSignaturesAreBroken() const;

    /// @name Parts
    /// @{

    /// Adds a part.
    /// @param content  ready to read; it is read to its end, block by block. If that fails, abandon the package
    /// @throws as `Package::createPart`, and whatever reading or writing the content throws
    void createPart(const model::PartName& name, const model::ContentType& contentType, InputStream& content);

    /// Removes a part and its relationships.
    /// @throws as `Package::deletePart`
    void deletePart(const model::PartName& name);

    /// Replaces the content of a part, as often as you like.
    /// @param content  as in `createPart`
    /// @throws as `Package::getPart` and `Part::restartOutputStream`, and whatever reading or writing the content throws
    void replaceContent(const model::PartName& name, InputStream& content);

    /// Gives a part another content type. Nothing is recorded if it has it already.
    /// @throws as `Package::setContentType`
    void retypePart(const model::PartName& name, const model::ContentType& contentType);

    /// @}

    /// @name Relationships
    /// @{

    struct NewRelationship {
        std::u16string type;
        std::u16string target;
        model::TargetMode mode = model::TargetMode::Internal;
        std::u16string id = {}; ///< empty to generate one
    };

    /// @throws PartNotFound; as `RelationshipSource::createInternalRelationship` and `createExternalRelationship`
    model::Relationship addRelationship(const model::PartName& source, const NewRelationship& added);

    /// @throws PartNotFound; as `RelationshipSource::deleteRelationship`
    void deleteRelationship(const model::PartName& source, const std::u16string& id);

    /// Gives a relationship another target. Id, type and place stay. Nothing is recorded if it has it already.
    /// @throws PartNotFound; as `RelationshipSource::setInternalTarget` and `setExternalTarget`
    void retarget(const model::PartName& source, const std::u16string& id, const std::u16string& target,
                  model::TargetMode mode);

    /// @}

    /// Calls `use` with the package for "/", otherwise with the part of that name.
    /// @throws PartNotFound
    void withSource(const model::PartName& source,
                    const std::function<void(model::RelationshipSource&)>& use) const;

private:
    model::Package& edited;
    const Signatures signaturesBefore;
    std::vector<Change> made;
    std::optional<Time> fixedNow;
};

/// What a relationship is, for a `Change`.
OPC_EDITING_EXPORT Change::State stateOf(const model::Relationship& relationship);

} // namespace opc::editing
