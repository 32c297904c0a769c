#include "relationships/RelationshipCheck.hpp"

#include "relationships/RelationshipTarget.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/URI.hpp>

namespace opc::model {

namespace {

/// Parses `text` as a URI. Throws `InvalidPartContent(message)` if it isn't one.
URI readURI(const std::u16string& text, const char* message) {
    try {
        return URI(text);
    } catch (const InvalidURI&) {
        throw InvalidPartContent(message);
    }
}

} // namespace

TargetMode checkRelationship(const std::u16string& type, const std::u16string& target,
                             std::u16string_view targetMode) {
    if (type.empty())
        throw InvalidPartContent("Type is empty");
    readURI(type, "Type is not a valid URI");
    if (target.empty())
        throw InvalidPartContent("Target is empty");

    if (targetMode == u"External") {
        if (!isIRITarget(target))
            throw InvalidPartContent("Target is not a valid IRI for an external relationship");
        return TargetMode::External;
    }
    const URI uri = readURI(target, "Target is not a valid URI for an internal relationship");
    if (uri.isOpaque())
        throw InvalidPartContent("Target of an internal relationship cannot be an opaque URI");
    return TargetMode::Internal;
}

} // namespace opc::model
