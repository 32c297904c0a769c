#include <opc/editing/Editor.hpp>

#include <opc/core/OutputStream.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/StandardPartInfo.hpp>

#include <array>
#include <cstddef>
#include <utility>

namespace opc::editing {

using model::ContentType;
using model::Package;
using model::Part;
using model::PartName;
using model::Relationship;
using model::RelationshipSource;
using model::TargetMode;

namespace {

constexpr std::size_t BLOCK_SIZE = std::size_t{64} * 1024;

/// @return how many bytes were copied
std::uint64_t copy(InputStream& from, OutputStream& to) {
    std::vector<unsigned char> block(BLOCK_SIZE);
    std::uint64_t size = 0;
    while (!from.isDone()) {
        const std::uint64_t count = from.read(block.data(), block.size());
        to.write(block.data(), count);
        size += count;
    }
    return size;
}

std::string textOf(const PartName& name) {
    return toUDEString(name.toString());
}

std::string textOf(const ContentType& contentType) {
    return toUDEString(contentType.toString());
}

Change makeChange(Change::Kind kind, const PartName& place) {
    return {kind, textOf(place), {}, {}, {}};
}

} // namespace

Editor::Editor(Package& package) : edited(package), signaturesBefore(package) {
}

Editor::Editor(Package& package, Signatures signatures, std::vector<Change> changes)
    : edited(package), signaturesBefore(std::move(signatures)), made(std::move(changes)) {
}

void Editor::throwIfSignaturesAreBroken() const {
    signaturesBefore.throwIfBrokenBy(made);
}

void Editor::createPart(const PartName& name, const ContentType& contentType, InputStream& content) {
    Change change = makeChange(Change::Kind::PartAdded, name);
    const Part part = edited.createPart(name, contentType, model::StandardPartInfo());
    change.after.size = copy(content, part.getOutputStream());
    change.after.text = textOf(contentType);
    record(std::move(change));
}

void Editor::deletePart(const PartName& name) {
    const Part part = edited.getPart(name);
    Change change = makeChange(Change::Kind::PartRemoved, part.getName());
    change.before.text = textOf(part.getContentType());
    change.before.size = part.getSize();
    edited.deletePart(name);
    record(std::move(change));
}

void Editor::replaceContent(const PartName& name, InputStream& content) {
    const Part part = edited.getPart(name);
    Change change = makeChange(Change::Kind::ContentReplaced, part.getName());
    change.before.size = part.getSize();
    change.after.size = copy(content, part.restartOutputStream());
    record(std::move(change));
}

void Editor::retypePart(const PartName& name, const ContentType& contentType) {
    const Part part = edited.getPart(name);
    Change change = makeChange(Change::Kind::ContentTypeChanged, part.getName());
    change.before.text = textOf(part.getContentType());
    change.after.text = textOf(contentType);
    edited.setContentType(name, contentType);
    if (change.before.text != change.after.text)
        record(std::move(change));
}

void Editor::withSource(const PartName& source, const std::function<void(RelationshipSource&)>& use) const {
    if (source.toString() == u"/") {
        use(edited);
        return;
    }
    Part part = edited.getPart(source);
    use(part);
}

Relationship Editor::addRelationship(const PartName& source, const NewRelationship& added) {
    std::optional<Relationship> created;
    withSource(source, [&](RelationshipSource& from) {
        created = added.mode == TargetMode::External
                      ? from.createExternalRelationship(added.type, added.target, added.id)
                      : from.createInternalRelationship(added.type, model::URI(added.target), added.id);
    });
    Change change = makeChange(Change::Kind::RelationshipAdded, source);
    change.name = toUDEString(created->getID());
    change.after = stateOf(*created);
    record(std::move(change));
    return *created;
}

void Editor::deleteRelationship(const PartName& source, const std::u16string& id) {
    Change change = makeChange(Change::Kind::RelationshipRemoved, source);
    withSource(source, [&](RelationshipSource& from) {
        if (from.hasRelationship(id))
            change.before = stateOf(from.getRelationshipByID(id));
        from.deleteRelationship(id);
    });
    change.name = toUDEString(id);
    record(std::move(change));
}

void Editor::retarget(const PartName& source, const std::u16string& id, const std::u16string& target,
                      TargetMode mode) {
    Change change = makeChange(Change::Kind::RelationshipChanged, source);
    withSource(source, [&](RelationshipSource& from) {
        if (from.hasRelationship(id))
            change.before = stateOf(from.getRelationshipByID(id));
        change.after = stateOf(mode == TargetMode::External ? from.setExternalTarget(id, target)
                                                            : from.setInternalTarget(id, model::URI(target)));
    });
    change.name = toUDEString(id);
    if (change.before.text != change.after.text || change.before.isExternal != change.after.isExternal)
        record(std::move(change));
}

Change::State stateOf(const Relationship& relationship) {
    Change::State state;
    state.text = toUDEString(relationship.getTarget());
    state.type = toUDEString(relationship.getType());
    state.isExternal = relationship.getTargetMode() == TargetMode::External;
    return state;
}

} // namespace opc::editing
