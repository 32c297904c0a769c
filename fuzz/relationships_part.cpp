#include "FuzzTarget.hpp"

#include "relationships/RelationshipManager.hpp"
#include "relationships/RelationshipSerializer.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/RelationshipSource.hpp>

using namespace opc;
using namespace opc::fuzz;
using namespace opc::model;

namespace {

void checkTarget(const Relationship& relationship) {
    try {
        const URI target = relationship.getTargetURI();
        if (relationship.getTargetMode() == TargetMode::Internal)
            require(target.hasAuthority() || target.hasAbsolutePath(), "an internal target is resolved");
    } catch (const InvalidURI&) {
        require(relationship.getTargetMode() == TargetMode::External,
                "an internal target that was read can be resolved");
    }
}

void checkSame(const RelationshipManager& left, const RelationshipManager& right) {
    const auto expected = left.getRelationships({});
    const auto found = right.getRelationships({});
    require(expected.size() == found.size(), "as many relationships are read as written");
    for (std::size_t i = 0; i < expected.size(); ++i) {
        requireEqual(expected[i].getID(), found[i].getID(), "a relationship is read with its ID");
        requireEqual(expected[i].getType(), found[i].getType(), "a relationship is read with its type");
        requireEqual(expected[i].getTarget(), found[i].getTarget(), "a relationship is read with its target");
        require(expected[i].getTargetMode() == found[i].getTargetMode(),
                "a relationship is read with its mode");
    }
}

void read(RelationshipSerializer& serializer, const Bytes& bytes, RelationshipManager& manager) {
    ByteArrayInAdaptor stream(bytes);
    serializer.read(stream, manager);
}

Bytes write(RelationshipSerializer& serializer, const RelationshipManager& manager) {
    Bytes bytes;
    ByteArrayOutAdaptor stream(bytes);
    serializer.write(manager, stream);
    require(std::string(bytes.begin(), bytes.end()) == serializer.serialize(manager),
            "a part is written as Xerces writes it");
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static RelationshipSerializer serializer; // compiling its schemas takes longer than reading
    const URI source(u"/folder/source.xml");
    RelationshipManager manager(source);
    if (!attempt<InvalidPartContent>([&] { read(serializer, Bytes(data, data + size), manager); }))
        return 0;
    for (const Relationship& relationship : manager.getRelationships({})) {
        require(RelationshipSource::isValidID(relationship.getID()), "an ID that was read is an ID");
        checkTarget(relationship);
    }
    const Bytes written = write(serializer, manager);
    RelationshipManager again(source);
    read(serializer, written, again);
    checkSame(manager, again);
    require(write(serializer, again) == written, "what was read is written as it was");
    return 0;
}
