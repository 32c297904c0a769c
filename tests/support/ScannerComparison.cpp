#include "support/ScannerComparison.hpp"

#include "contenttypes/ContentTypeMap.hpp"
#include "contenttypes/ContentTypeSerializer.hpp"
#include "contenttypes/ContentTypesScanner.hpp"
#include "relationships/RelationshipManager.hpp"
#include "relationships/RelationshipSerializer.hpp"
#include "relationships/RelationshipsScanner.hpp"
#include "support/Outcome.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>

namespace opc::test {

using namespace model;

namespace {

bool areRelationshipsRecognised(const Bytes& document) {
    std::vector<ScannedRelationship> found;
    PlainTexts texts;
    return scanRelationships(toText(document), found, texts);
}

bool areContentTypesRecognised(const Bytes& document) {
    ScannedContentTypes found;
    return scanContentTypes(toText(document), found);
}

/// The result of reading a document as a text, with the scanner or by the parser alone.
/// @{

std::string readRelationships(const Bytes& document, bool scanning) {
    RelationshipSerializer serializer;
    RelationshipManager manager(URI(u"/"));
    ByteArrayInAdaptor stream(document);
    std::string result =
        outcomeOf([&] { scanning ? serializer.read(stream, manager) : serializer.parse(stream, manager); }) +
        '\n';
    result += std::to_string(manager.countUnread()) + '\n';
    for (const Relationship& entry : manager.getRelationships({}))
        result += toUDEString(entry.getID() + u" " + entry.getType() + u" " + entry.getTarget()) +
                  (entry.getTargetMode() == TargetMode::External ? " External\n" : "\n");
    return result;
}

std::string readContentTypes(const Bytes& document, bool scanning) {
    const ContentTypeSerializer serializer;
    ContentTypeMap map;
    ByteArrayInAdaptor stream(document);
    std::string result =
        outcomeOf([&] { scanning ? serializer.read(map, stream) : serializer.parse(map, stream); }) + '\n';
    result += std::to_string(map.countUnread()) + '\n';
    for (const auto& [extension, entry] : map.getDefaults())
        result += toUDEString(extension + u" " + entry.contentType.toString()) + '\n';
    for (const auto& [name, contentType] : map.getOverrides())
        result += toUDEString(name.toString() + u" " + contentType.toString()) + '\n';
    return result;
}

/// @}

} // namespace

bool ScannerComparison::isRecognised(const Bytes& document) const {
    return isOfRelationships ? areRelationshipsRecognised(document) : areContentTypesRecognised(document);
}

std::string ScannerComparison::findDifference(const Bytes& document) const {
    const auto read = isOfRelationships ? readRelationships : readContentTypes;
    return isRecognised(document) ? differenceOf(read(document, true), read(document, false)) : std::string();
}

} // namespace opc::test
