#include "xml/SchemaType.hpp"

#include "xml/GrammarLoading.hpp"
#include "xml/XercesFailures.hpp"

#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOMLSParser.hpp>
#include <xercesc/validators/schema/SchemaGrammar.hpp>

namespace opc::model {

SchemaType::SchemaType(const EmbeddedSchema& schema, const char16_t* name)
    : parser(XercesHelper::createParser()) {
    auto* const grammar = static_cast<xercesc::SchemaGrammar*>(loadGrammarUnchecked(parser.get(), schema));
    validator = grammar->getDatatypeRegistry()->getDatatypeValidator(name);
}

SchemaType::~SchemaType() = default;

bool SchemaType::accepts(const std::u16string& value) const {
    try {
        translateXercesFailures([&] { validator->validate(value.c_str()); });
        return true;
    } catch (const InvalidXMLDocument&) {
        return false;
    }
}

} // namespace opc::model
