#include "contenttypes/ContentTypesParsers.hpp"

#include "xml/EmbeddedSchemas.hpp"
#include "xml/GrammarLoading.hpp"

#include <opc/model/XercesHelper.hpp>

namespace opc::model {

IdleParsers& contentTypesParsers() {
    static IdleParsers& parsers = *new IdleParsers([] {
        auto parser = XercesHelper::createParser();
        loadGrammarUnchecked(parser.get(), schemas::CONTENT_TYPES);
        return parser;
    });
    return parsers;
}

} // namespace opc::model
