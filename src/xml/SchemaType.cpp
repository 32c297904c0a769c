#include "xml/SchemaType.hpp"

#include "xml/XercesFailures.hpp"

#include <xercesc/dom/DOMLSParser.hpp>
#include <xercesc/validators/schema/SchemaGrammar.hpp>

#include <utility>

namespace opc::model {

SchemaType::SchemaType(IdleParsers& kind, const char16_t* namespaceURI, const char16_t* localName)
    : kind(kind), parser(kind.take()) {
    auto* const grammar = static_cast<xercesc::SchemaGrammar*>(parser->getGrammar(namespaceURI));
    const std::u16string name = std::u16string(namespaceURI) + u',' + localName; // as the registry has it
    validator = grammar->getDatatypeRegistry()->getDatatypeValidator(name.c_str());
}

SchemaType::~SchemaType() {
    kind.giveBack(std::move(parser));
}

bool SchemaType::accepts(const std::u16string& value) const {
    try {
        translateXercesFailures([&] { validator->validate(value.c_str()); });
        return true;
    } catch (const InvalidXMLDocument&) {
        return false;
    }
}

} // namespace opc::model
