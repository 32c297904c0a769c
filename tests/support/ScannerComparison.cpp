#include "support/ScannerComparison.hpp"

#include "package/ContentTypeMap.hpp"
#include "package/ContentTypeSerializer.hpp"
#include "package/ContentTypesScanner.hpp"
#include "relationships/RelationshipManager.hpp"
#include "relationships/RelationshipSerializer.hpp"
#include "relationships/RelationshipsScanner.hpp"
#include "support/Outcome.hpp"
#include "xml/DocumentPoolReset.hpp"
#include "xml/GrammarLoading.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XercesHelper.hpp>

#include <algorithm>

#include <xercesc/dom/DOM.hpp>

namespace opc::test {

using namespace model;

namespace {

using Elements = ScannerComparison::Elements;
using Attributes = ScannerComparison::Attributes;

std::string text(std::string_view view) {
    return std::string(view);
}

bool scanRelationshipElements(const Bytes& document, Elements& elements) {
    const std::string content = toText(document);
    std::vector<ScannedRelationship> found;
    PlainTexts texts;
    if (!scanRelationships(content, found, texts))
        return false;
    for (const ScannedRelationship& entry : found) {
        Attributes attributes{{"Id", text(entry.id)}, {"Target", text(entry.target)}};
        if (!entry.targetMode.empty())
            attributes.emplace_back("TargetMode", text(entry.targetMode));
        attributes.emplace_back("Type", text(entry.type));
        elements.emplace_back("Relationship", attributes);
    }
    return true;
}

bool scanContentTypeElements(const Bytes& document, Elements& elements) {
    const std::string content = toText(document);
    ScannedContentTypes found;
    if (!scanContentTypes(content, found))
        return false;
    for (const ScannedContentType& entry : found.defaults)
        elements.emplace_back(
            "Default", Attributes{{"ContentType", text(entry.contentType)}, {"Extension", text(entry.key)}});
    for (const ScannedContentType& entry : found.overrides)
        elements.emplace_back(
            "Override", Attributes{{"ContentType", text(entry.contentType)}, {"PartName", text(entry.key)}});
    return true;
}

/// What reading makes of a document, as a text, with the scanner or by the parser alone.
/// @{

std::string readRelationships(const Bytes& document, bool scanning) {
    RelationshipSerializer serializer;
    RelationshipManager manager(URI(u"/"));
    ByteArrayInAdaptor stream(document);
    std::string result =
        outcomeOf([&] { scanning ? serializer.read(stream, manager) : serializer.parse(stream, manager); }) +
        '\n';
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
    for (const auto& [extension, entry] : map.getDefaults())
        result += toUDEString(extension + u" " + entry.contentType.toString()) + '\n';
    for (const auto& [name, contentType] : map.getOverrides())
        result += toUDEString(name.toString() + u" " + contentType.toString()) + '\n';
    return result;
}

/// @}

} // namespace

ScannerComparison::ScannerComparison(const EmbeddedSchema& kind)
    : schema(kind), parser(XercesHelper::createParser()) {
    loadGrammarUnchecked(parser.get(), schema);
}

ScannerComparison::~ScannerComparison() = default;

bool ScannerComparison::isRelationships() const {
    return &schema == &schemas::RELATIONSHIPS;
}

bool ScannerComparison::scan(const Bytes& document, Elements& elements) const {
    elements.clear();
    return isRelationships() ? scanRelationshipElements(document, elements)
                             : scanContentTypeElements(document, elements);
}

bool ScannerComparison::parse(const Bytes& document, Elements& elements) {
    elements.clear();
    ByteArrayInAdaptor stream(document);
    const DocumentPoolReset reset(parser.get());
    try {
        const auto* root =
            XercesHelper::readDocumentFromStream(parser.get(), stream, true, {}, {})->getDocumentElement();
        for (const auto* child = root->getFirstElementChild(); child != nullptr;
             child = child->getNextElementSibling()) {
            auto& [name, attributes] = elements.emplace_back();
            name = toUDEString(child->getTagName());
            const auto* map = child->getAttributes();
            for (XMLSize_t i = 0; i < map->getLength(); ++i)
                attributes.emplace_back(toUDEString(map->item(i)->getNodeName()),
                                        toUDEString(map->item(i)->getNodeValue()));
            std::sort(attributes.begin(), attributes.end());
        }
    } catch (const InvalidXMLDocument&) {
        return false;
    }
    std::stable_sort(elements.begin(), elements.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    return true;
}

std::string ScannerComparison::findDifference(const Bytes& document) {
    Elements scanned;
    Elements parsed;
    if (!scan(document, scanned))
        return {};
    if (!parse(document, parsed))
        return "recognised, but invalid";
    if (scanned != parsed)
        return "other elements or attributes";
    const auto read = isRelationships() ? readRelationships : readContentTypes;
    return differenceOf(read(document, true), read(document, false));
}

} // namespace opc::test
