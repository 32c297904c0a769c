#include "FuzzTarget.hpp"

#include "names/ContentTypeGrammar.hpp"

#include <opc/model/ContentType.hpp>
#include <opc/model/Errors.hpp>

#include <optional>

using namespace opc::fuzz;
using namespace opc::model;

namespace {

void checkSame(const ContentType& left, const ContentType& right) {
    requireEqual(left.toString(), right.toString(), "the canonical text is its own canonical text");
    requireEqual(left.getType(), right.getType(), "the canonical text has the same type");
    requireEqual(left.getSubType(), right.getSubType(), "the canonical text has the same subtype");
}

void checkParameter(ContentType type, const std::u16string& attribute, const std::u16string& value) {
    const std::u16string before = type.toString();
    if (!attempt<InvalidContentTypeParameter>([&] { type.addParameter(attribute, value); })) {
        requireEqual(type.toString(), before, "a refused parameter changes nothing");
        return;
    }
    requireEqual(type.getParameterValue(attribute), value, "a parameter has the value that it was given");
    if (value.find(u'"') == std::u16string::npos)
        checkSame(type, ContentType(type.toString()));
    type.removeParameter(attribute);
    require(!type.hasParameter(attribute), "a removed parameter is gone");
    checkSame(type, ContentType(type.toString()));
}

/// Parsing without the grammar gives the same result as the grammar.
void checkPlain(const std::u16string& text) {
    ParsedContentType plain;
    ParsedContentType byGrammar;
    if (!contenttype::parsePlain(text, plain))
        return;
    require(contenttype::parseByGrammar(text, byGrammar), "the grammar takes what is plain");
    require(plain.name == byGrammar.name, "the grammar gives the same type and subtype");
    require(plain.parameters == byGrammar.parameters, "the grammar gives the same parameters");
}

} // namespace

/// The lines of the input: a content type, and the attribute and value of a parameter for it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<Bytes> lines = split(data, size, '\n');
    lines.resize(3);
    checkPlain(toText(lines[0]));
    std::optional<ContentType> type;
    if (!attempt<InvalidContentType>([&] { type = ContentType(toText(lines[0])); }))
        return 0;
    checkSame(*type, ContentType(type->toString()));
    checkParameter(*type, toText(lines[1]), toText(lines[2]));
    return 0;
}
