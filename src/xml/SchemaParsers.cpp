#include "xml/SchemaParsers.hpp"

#include "xml/EmbeddedSchemas.hpp"
#include "xml/GrammarLoading.hpp"

#include <opc/model/XercesHelper.hpp>

namespace opc::model {

namespace {

IdleParsers::Owned makeParser(const EmbeddedSchema& schema) {
    auto parser = XercesHelper::createParser();
    loadGrammarUnchecked(parser.get(), schema);
    return parser;
}

} // namespace

IdleParsers& contentTypesParsers() {
    static IdleParsers& parsers = *new IdleParsers([] { return makeParser(schemas::CONTENT_TYPES); });
    return parsers;
}

IdleParsers& relationshipsParsers() {
    static IdleParsers& parsers = *new IdleParsers([] { return makeParser(schemas::RELATIONSHIPS); });
    return parsers;
}

IdleParsers& parsersWithoutSchema() {
    static IdleParsers& parsers = *new IdleParsers([] { return XercesHelper::createParser(); });
    return parsers;
}

} // namespace opc::model
