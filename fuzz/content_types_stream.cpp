#include "FuzzTarget.hpp"

#include "contenttypes/ContentTypeMap.hpp"
#include "contenttypes/ContentTypeSerializer.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XercesGuard.hpp>

using namespace opc;
using namespace opc::fuzz;
using namespace opc::model;

namespace {

void read(const ContentTypeSerializer& serializer, ContentTypeMap& map, const Bytes& bytes) {
    ByteArrayInAdaptor stream(bytes);
    serializer.read(map, stream);
    // An entry that no part uses isn't written.
    const ContentTypeMap::Defaults defaults = map.getDefaults();
    for (const auto& [extension, entry] : defaults)
        map.addReference(extension);
}

Bytes write(const ContentTypeSerializer& serializer, const ContentTypeMap& map) {
    Bytes bytes;
    ByteArrayOutAdaptor stream(bytes);
    serializer.write(map, stream);
    require(std::string(bytes.begin(), bytes.end()) == ContentTypeSerializer::serialize(map),
            "a stream is written as Xerces writes it");
    return bytes;
}

void checkSame(const ContentTypeMap& left, const ContentTypeMap& right) {
    require(left.getDefaults().size() == right.getDefaults().size(), "as many Default are read as written");
    for (const auto& [extension, entry] : left.getDefaults()) {
        require(right.hasDefault(extension), "a Default that was written is read");
        requireEqual(entry.contentType.toString(), right.getDefault(extension).toString(), "with its type");
    }
    require(left.getOverrides().size() == right.getOverrides().size(),
            "as many Override are read as written");
    for (const auto& [name, contentType] : left.getOverrides()) {
        require(right.hasOverride(name), "an Override that was written is read");
        requireEqual(contentType.toString(), right.findOverride(name)->second.toString(), "with its type");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const XercesGuard guard; // starting Xerces takes longer than reading
    const ContentTypeSerializer serializer;
    ContentTypeMap map;
    if (!attempt<InvalidPartContent, InvalidContentType, InvalidURI>(
            [&] { read(serializer, map, Bytes(data, data + size)); }))
        return 0;
    const Bytes written = write(serializer, map);
    ContentTypeMap again;
    read(serializer, again, written);
    checkSame(map, again);
    require(write(serializer, again) == written, "what was read is written as it was");
    return 0;
}
