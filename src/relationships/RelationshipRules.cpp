#include <opc/model/RelationshipRules.hpp>

#include "relationships/RelationshipCheck.hpp"
#include "relationships/RelationshipsScanner.hpp"
#include "xml/AttributeValues.hpp"
#include "xml/LongTags.hpp"

#include <opc/model/Errors.hpp>

namespace opc::model {

namespace {

/// The room that a tag needs beside the values of a relationship.
constexpr std::size_t LONGEST_FRAME = 128;

bool isTooLong(const RelationshipRules::Attributes& attributes) {
    const std::size_t size =
        sizeInTag(*attributes.id) + sizeInTag(*attributes.type) + sizeInTag(*attributes.target);
    return size > LONGEST_TAG - LONGEST_FRAME;
}

std::string findDefectBySchema(const RelationshipRules::Attributes& attributes) {
    if (!attributes.id)
        return "Id is missing";
    if (!attributes.type)
        return "Type is missing";
    if (!attributes.target)
        return "Target is missing";
    if (isTooLong(attributes))
        return TAG_IS_TOO_LONG;
    if (!isHeldID(RelationshipRules::read(*attributes.id)))
        return "Id is not a valid xsd:ID";
    const auto isURI = [](const std::u16string& value) {
        return value.empty() || isHeldURI(value); // an empty value is reported later
    };
    if (!isURI(RelationshipRules::read(*attributes.type)))
        return "Type is not a valid xsd:anyURI";
    if (!isURI(RelationshipRules::read(*attributes.target)))
        return "Target is not a valid xsd:anyURI";
    if (attributes.targetMode && *attributes.targetMode != u"External" &&
        *attributes.targetMode != u"Internal")
        return "TargetMode is neither External nor Internal";
    return {};
}

} // namespace

std::string RelationshipRules::findDefect(const Attributes& attributes) {
    std::string defect = findDefectBySchema(attributes);
    if (!defect.empty())
        return defect;
    try {
        checkRelationship(read(*attributes.type), read(*attributes.target),
                          attributes.targetMode.value_or(u""));
    } catch (const InvalidPartContent& e) {
        return e.what();
    }
    return {};
}

bool RelationshipRules::isPlain(std::string_view document) {
    std::vector<ScannedRelationship> found;
    PlainTexts texts;
    return scanRelationships(document, found, texts);
}

std::u16string RelationshipRules::read(std::u16string_view value) {
    return collapse(value);
}

} // namespace opc::model
