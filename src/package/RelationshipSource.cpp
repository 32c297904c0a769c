#include <opc/model/RelationshipSource.hpp>

#include "package/PackageImpl.hpp"
#include "package/RelationshipSourceImpl.hpp"
#include "relationships/RelationshipID.hpp"
#include "relationships/RelationshipTarget.hpp"
#include "xml/AttributeValues.hpp"
#include "xml/LongTags.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/model/PhysicalInputStream.hpp>
#include <opc/model/PhysicalOutputStream.hpp>
#include <opc/model/StandardPartInfo.hpp>

#include <utility>

namespace opc::model {

namespace {

constexpr char INVALID_TYPE[] = "Relationship type is not a valid xsd::anyURI";
constexpr char INVALID_EXTERNAL_TARGET[] = "External relationship target is not a valid xsd::anyURI. See "
                                           "http://www.w3.org/TR/leiri/.";

[[noreturn]] void throwIDExists(const std::u16string& id) {
    RelationshipAlreadyExists failure("Relationship ID already exists");
    failure.setRelationship(toUDEString(id));
    throw failure;
}

} // namespace

RelationshipSource::RelationshipSource(const URI& sourceURI)
    : RelationshipSource(std::make_shared<Impl>(sourceURI)) {
}

RelationshipSource::RelationshipSource(std::shared_ptr<Impl> impl) : impl(std::move(impl)) {
}

RelationshipSource::~RelationshipSource() = default;

Relationship RelationshipSource::createInternalRelationship(const std::u16string& type, const URI& target,
                                                            const std::u16string& id) {
    throwIfNotWritable();
    throwIfRelationshipsFixed();
    const URI relativeForm = relativeFormOf(target);
    const std::u16string verifiedID =
        verifyRelationship(id, type, relativeForm.toString(), TargetMode::Internal);
    return withRelationshipPart(impl->manager.addInternalRelationship(verifiedID, type, relativeForm));
}

/// An internal target as it is stored.
/// @throws InvalidRelationshipTarget, UnsupportedRelativize
URI RelationshipSource::relativeFormOf(const URI& target) const {
    if (target.isAbsolute())
        throw InvalidRelationshipTarget(
            "Relationship target cannot be an absolute URI for an internal relationship");

    const URI& sourceURI = impl->manager.getSourceURI();
    const bool targetIsAbsolute = target.hasAbsolutePath();
    const URI absoluteForm = targetIsAbsolute ? target : resolve(sourceURI, target);
    const URI relativeForm = targetIsAbsolute ? relativize(sourceURI, target) : target;
    try {
        if (PartName(absoluteForm).isRelationshipName())
            throw InvalidRelationshipTarget("Relationship target cannot be a relationship part name.");
    } catch (const InvalidPartName& e) {
        throw translated<InvalidRelationshipTarget>(e, e.what());
    }
    if (absoluteForm == sourceURI)
        throw InvalidRelationshipTarget("Relationship target cannot be the same as the source.");
    return relativeForm;
}

Relationship RelationshipSource::createExternalRelationship(const std::u16string& type,
                                                            const std::u16string& target,
                                                            const std::u16string& id) {
    throwIfNotWritable();
    throwIfRelationshipsFixed();
    if (!isValidTarget(target))
        throw InvalidRelationshipTarget(INVALID_EXTERNAL_TARGET);
    const std::u16string verifiedID = verifyRelationship(id, type, target, TargetMode::External);
    return withRelationshipPart(impl->manager.addExternalRelationship(verifiedID, type, target));
}

std::u16string RelationshipSource::verifyRelationship(const std::u16string& id, const std::u16string& type,
                                                      const std::u16string& target, TargetMode targetMode) {
    if (type.empty())
        throw InvalidRelationshipType("Relationship type must not be empty.");
    try {
        const URI uri(type);
    } catch (const InvalidURI&) {
        throw InvalidRelationshipType(INVALID_TYPE);
    }
    if (!id.empty()) {
        if (!isValidID(id) || !fitsIntoTag(id))
            throw InvalidRelationshipID("Relationship ID is not a valid xsd::ID");
        if (impl->usesID(id))
            throwIDExists(id);
    }
    throwIfPartCanNotHoldType(type);
    throwIfPartCanNotHoldTarget(target, targetMode);
    std::u16string verifiedID = id.empty() ? generateID() : id;
    doVerifyRelationship(verifiedID, type, target);
    return verifiedID;
}

/// The checks of reading follow: a relationship that broke one would make the whole relationships part unreadable.
void RelationshipSource::throwIfPartCanNotHoldType(const std::u16string& type) const {
    if (!canHoldURI(type))
        throw InvalidRelationshipType(INVALID_TYPE);
}

void RelationshipSource::throwIfPartCanNotHoldTarget(const std::u16string& target,
                                                     TargetMode targetMode) const {
    if (target.empty())
        throw InvalidRelationshipTarget("Relationship target must not be empty.");
    if (!canHoldURI(target))
        throw InvalidRelationshipTarget(targetMode == TargetMode::External
                                            ? INVALID_EXTERNAL_TARGET
                                            : "Relationship target is not a valid xsd::anyURI");
}

std::u16string RelationshipSource::generateID() {
    std::uint64_t number = impl->nextIdNumber;
    const auto candidate = [&number] { return u"rId" + toString(std::to_string(number), true); };
    std::u16string id = candidate();
    while (impl->usesID(id)) {
        ++number;
        id = candidate();
    }
    impl->nextIdNumber = number + 1;
    return id;
}

void RelationshipSource::doVerifyRelationship(const std::u16string& /*id*/, const std::u16string& /*type*/,
                                              const std::u16string& /*target*/) {
}

/// Creates the relationships part for the first relationship. If that fails, removes the relationship again.
Relationship RelationshipSource::withRelationshipPart(const Relationship& added) {
    if (!impl->manager.hasOne() || impl->keepsMore())
        return added;
    try {
        createRelationshipPart();
    } catch (...) {
        impl->manager.clear();
        throw;
    }
    return added;
}

void RelationshipSource::createRelationshipPart() {
    const PartName name(PartName(impl->manager.getSourceURI()).getRelationshipPartName());
    Package::Impl& package = getPackage().state();
    package.findPlaceOfNewPart(name); // a part from the file may have this name in another letter case
    setPhysicalRelationshipPart(
        package.createPartInternal(name, PackageHelper::getRelationshipContentType(), StandardPartInfo()),
        true);
}

void RelationshipSource::deleteRelationship(const std::u16string& id) {
    throwIfNotWritable();
    throwIfCreateOnly();
    throwIfRelationshipsFixed();
    const interfaces::IPhysicalPart* part = impl->keepsMore() ? nullptr : impl->relationshipsPart;
    if (part != nullptr && impl->manager.hasOne() && impl->manager.hasRelationship(id))
        getPackage().state().contentTypeSource->throwIfFixed(); // the part is deleted with its last one
    impl->manager.deleteRelationship(id);
    if (!impl->manager.isEmpty() || part == nullptr)
        return;
    setPhysicalRelationshipPart(nullptr, false);
    getPackage().state().deletePartInternal(PartName(part->getName()));
}

Relationship RelationshipSource::setInternalTarget(const std::u16string& id, const URI& target) {
    throwIfNotWritable();
    throwIfRelationshipsFixed();
    impl->manager.getRelationship(id);
    const std::u16string relativeForm = relativeFormOf(target).toString();
    throwIfPartCanNotHoldTarget(relativeForm, TargetMode::Internal);
    return impl->manager.setTarget(id, relativeForm, TargetMode::Internal);
}

Relationship RelationshipSource::setExternalTarget(const std::u16string& id, const std::u16string& target) {
    throwIfNotWritable();
    throwIfRelationshipsFixed();
    impl->manager.getRelationship(id);
    if (!isValidTarget(target))
        throw InvalidRelationshipTarget(INVALID_EXTERNAL_TARGET);
    throwIfPartCanNotHoldTarget(target, TargetMode::External);
    return impl->manager.setTarget(id, target, TargetMode::External);
}

void RelationshipSource::copyRelationships(const RelationshipSource& from) {
    throwIfNotWritable();
    throwIfRelationshipsFixed();
    from.throwIfNotReadable();
    if (from.hasUnreadRelationships())
        throw InvalidRelationshipContent(
            "In " + toASCIIString(PartName(from.impl->manager.getSourceURI()).getRelationshipPartName()) +
            ": relationships that weren't read would be missing in a copy");
    if (!impl->manager.isEmpty())
        throw RelationshipAlreadyExists("The source has relationships already");
    RelationshipManager copies(impl->manager.getSourceURI());
    for (const Relationship& relationship : from.impl->manager.getRelationships({}))
        if (relationship.getTargetMode() == TargetMode::External)
            copies.addExternalRelationship(relationship.getID(), relationship.getType(),
                                           relationship.getTarget());
        else
            copies.addInternalRelationship(relationship.getID(), relationship.getType(),
                                           URI(targetFromHere(relationship)));
    if (copies.isEmpty())
        return;
    if (impl->relationshipsPart == nullptr)
        createRelationshipPart();
    impl->manager = std::move(copies);
}

/// The target of another source's internal relationship, as a reference from this source.
std::u16string RelationshipSource::targetFromHere(const Relationship& relationship) const {
    const URI target(relationship.getTarget());
    if (target.getPath().empty() || target.hasAuthority() || target.hasAbsolutePath())
        return target.toString(); // leads to the same from everywhere, or to the source itself
    const URI absolute = relationship.getTargetURI();
    try {
        return relativize(impl->manager.getSourceURI(), absolute).toString();
    } catch (const UnsupportedRelativize&) {
        return absolute.toString();
    }
}

Relationship RelationshipSource::getRelationshipByID(const std::u16string& id) const {
    throwIfNotReadable();
    return impl->manager.getRelationship(id);
}

bool RelationshipSource::hasRelationship(const std::u16string& id) const {
    throwIfNotReadable();
    return impl->manager.hasRelationship(id);
}

Enumerator<std::vector<Relationship>> RelationshipSource::getRelationships(ExcludeMode mode) const {
    throwIfNotReadable();
    std::unordered_set<std::u16string, TextHash> excludedTypes;
    if (mode == ExcludeMode::ExcludeManaged)
        excludedTypes = getPackage().state().getManagedRelationshipTypes();
    return Enumerator<std::vector<Relationship>>(impl->manager.getRelationships(excludedTypes));
}

Enumerator<std::vector<Relationship>>
RelationshipSource::getRelationshipsByType(const std::u16string& type) const {
    throwIfNotReadable();
    return Enumerator<std::vector<Relationship>>(impl->manager.getRelationshipsByType(type));
}

bool RelationshipSource::hasUnreadRelationships() const {
    throwIfNotReadable();
    return impl->manager.countUnread() > 0 || impl->keepsMore();
}

bool RelationshipSource::isValidID(const std::u16string& id) {
    return isRelationshipID(id);
}

bool RelationshipSource::isValidTarget(const std::u16string& target) {
    return isIRITarget(target);
}

void RelationshipSource::flush() {
    if (!impl->manager.isDirty() || (impl->manager.isEmpty() && !impl->keepsMore()))
        return;
    PhysicalOutputStream stream(impl->relationshipsPart->getOutputStream());
    impl->manager.flush(stream, *getPackage().state().relationshipSerializer);
    try {
        stream.close();
    } catch (...) {
        impl->manager.markAsDirty(); // bytes may be lost if the stream can't be closed
        throw;
    }
}

// In place, so that nothing can fail. No copy of this source shares its state.
void RelationshipSource::reset() {
    impl->relationshipsPart = nullptr;
    impl->kept = nullptr;
    impl->keptMore = false;
    impl->hasLostKept = false;
    impl->manager = RelationshipManager(impl->manager.getSourceURI());
    impl->nextIdNumber = 1;
}

void RelationshipSource::setPhysicalRelationshipPart(interfaces::IPhysicalPart* part, bool isNew) {
    impl->relationshipsPart = part;
    impl->kept = nullptr;
    impl->keptMore = false;
    if (part == nullptr || isNew)
        return;
    impl->kept = dynamic_cast<const interfaces::IKeptRelationships*>(part);
    try {
        PhysicalInputStream stream(part->getInputStream());
        impl->manager.read(stream, *getPackage().state().relationshipSerializer);
        impl->keptMore = impl->kept != nullptr && impl->kept->keepsMore();
    } catch (const InvalidPartContent& e) {
        throw aboutPart(toUDEString(part->getName()),
                        translated<InvalidRelationshipContent>(e, "In " + toASCIIString(part->getName()) +
                                                                      ": " + e.what()));
    }
}

interfaces::IPhysicalPart* RelationshipSource::getPhysicalRelationshipPart() const {
    return impl->relationshipsPart;
}

void RelationshipSource::forgetPhysicalRelationshipPart() {
    impl->hasLostKept = impl->hasLostKept || impl->keepsMore();
    impl->relationshipsPart = nullptr;
    impl->kept = nullptr;
    impl->keptMore = false;
    impl->manager.markAsDirty();
}

void RelationshipSource::restoreRelationshipPart() {
    if (impl->relationshipsPart != nullptr)
        return;
    throwIfRelationshipsFixed(); // elements that weren't read can't be written again
    if (!impl->manager.isEmpty())
        createRelationshipPart();
}

void RelationshipSource::throwIfRelationshipsFixed() const {
    const std::string reason = impl->whyFixed();
    if (reason.empty())
        return;
    const interfaces::IPhysicalPart* part = impl->relationshipsPart;
    const std::u16string name =
        part != nullptr ? part->getName() : PartName(impl->manager.getSourceURI()).getRelationshipPartName();
    throw aboutPart(toUDEString(name),
                    InvalidRelationshipContent("In " + toASCIIString(name) + ": " + reason));
}

void RelationshipSource::throwIfInvalid() const {
    if (!isValid())
        throw InvalidObject("Object is no longer valid");
}

void RelationshipSource::throwIfNotOpen() const {
    if (!isOpen())
        throw PackageNotOpen("Package is not open");
}

void RelationshipSource::throwIfReadOnly() const {
    if (isReadOnly())
        throw PackageReadOnly("Package is read-only");
}

void RelationshipSource::throwIfCreateOnly() const {
    if (isCreateOnly())
        throw PackageCreateOnly("Package is open only for create");
}

void RelationshipSource::throwIfNotReadable() const {
    throwIfInvalid();
    throwIfNotOpen();
}

void RelationshipSource::throwIfNotWritable() const {
    throwIfNotReadable();
    throwIfReadOnly();
}

} // namespace opc::model
