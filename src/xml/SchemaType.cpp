#include "xml/SchemaType.hpp"

#include "xml/SchemaParsers.hpp"
#include "xml/XercesFailures.hpp"

#include <opc/model/ContentTypesVocabulary.hpp>
#include <opc/model/XercesGuard.hpp>

#include <xercesc/dom/DOMLSParser.hpp>
#include <xercesc/util/XMLUni.hpp>
#include <xercesc/validators/datatype/DatatypeValidatorFactory.hpp>
#include <xercesc/validators/schema/SchemaGrammar.hpp>
#include <xercesc/validators/schema/SchemaSymbols.hpp>

#include <utility>

namespace opc::model {

namespace {

using xercesc::DatatypeValidator;

bool accepts(DatatypeValidator& validator, const std::u16string& value) {
    try {
        translateXercesFailures([&] { validator.validate(value.c_str()); });
        return true;
    } catch (const InvalidXMLDocument&) {
        return false;
    }
}

/// One that every schema has.
class BuiltInType final : public SchemaType {
public:
    explicit BuiltInType(const XMLCh* name)
        : validator(xercesc::DatatypeValidatorFactory::getBuiltInRegistry()->get(name)) {}

    bool accepts(const std::u16string& value) const override { return model::accepts(*validator, value); }

private:
    const XercesGuard guard;
    DatatypeValidator* const validator;
};

class ContentTypePattern final : public SchemaType {
public:
    ContentTypePattern() : parser(contentTypesParsers().take()) {
        constexpr std::u16string_view NAMESPACE = vocabulary::content_types::NAMESPACE.wide();
        auto* const grammar = static_cast<xercesc::SchemaGrammar*>(parser->getGrammar(NAMESPACE.data()));
        const std::u16string name = std::u16string(NAMESPACE) + u",ST_ContentType"; // as the registry has it
        validator = grammar->getDatatypeRegistry()->getDatatypeValidator(name.c_str());
    }
    ContentTypePattern(const ContentTypePattern&) = delete;
    ContentTypePattern& operator=(const ContentTypePattern&) = delete;
    ~ContentTypePattern() override { contentTypesParsers().giveBack(std::move(parser)); }

    bool accepts(const std::u16string& value) const override { return model::accepts(*validator, value); }

private:
    const XercesGuard guard;
    IdleParsers::Owned parser; // has the grammar of the type
    DatatypeValidator* validator;
};

} // namespace

std::unique_ptr<SchemaType> makeSchemaType(SchemaType::Name name) {
    switch (name) {
    case SchemaType::Name::AnyURI:
        return std::make_unique<BuiltInType>(xercesc::SchemaSymbols::fgDT_ANYURI);
    case SchemaType::Name::ID:
        return std::make_unique<BuiltInType>(xercesc::XMLUni::fgIDString);
    case SchemaType::Name::ContentType:
        break;
    }
    return std::make_unique<ContentTypePattern>();
}

} // namespace opc::model
