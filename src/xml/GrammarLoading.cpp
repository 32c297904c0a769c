#include "xml/GrammarLoading.hpp"

#include "xml/ErrorHandlerAttachment.hpp"
#include "xml/XercesFailures.hpp"

#include <xercesc/dom/DOMLSParser.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/Wrapper4InputSource.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace opc::model {

namespace {

void useCachedGrammars(xercesc::DOMLSParser* parser) {
    parser->getDomConfig()->setParameter(xercesc::XMLUni::fgXercesUseCachedGrammarInParse, true);
}

xercesc::Grammar* loadGrammar(xercesc::DOMLSParser* parser, const EmbeddedSchema& schema) {
    const xercesc::Wrapper4InputSource source(
        new xercesc::MemBufInputSource(schema.text, schema.size, schema.bufferName));
    return parser->loadGrammar(&source, xercesc::Grammar::SchemaGrammarType, true);
}

} // namespace

void loadGrammars(xercesc::DOMLSParser* parser, std::initializer_list<const EmbeddedSchema*> schemas) {
    useCachedGrammars(parser);
    try {
        XercesErrorHandler handler;
        translateXercesFailures([&] {
            const ErrorHandlerAttachment attachment(parser->getDomConfig(), handler);
            for (const EmbeddedSchema* schema : schemas)
                loadGrammar(parser, *schema);
        });
        handler.throwIfError();
    } catch (const InvalidXMLDocument& failure) {
        throw InvalidXMLSchema(std::string("Schema could not be loaded: ") + failure.what());
    }
}

xercesc::Grammar* loadGrammarUnchecked(xercesc::DOMLSParser* parser, const EmbeddedSchema& schema) {
    return translateXercesFailures([&] {
        useCachedGrammars(parser);
        return loadGrammar(parser, schema);
    });
}

} // namespace opc::model
