#include <opc/model/XmlRules.hpp>

#include "xml/ReusedParser.hpp"
#include "xml/SchemaParsers.hpp"

#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesHelper.hpp>

namespace opc::model {

void XmlRules::check(InputStream& stream) {
    const XercesGuard guard;
    ReusedParser(parsersWithoutSchema()).use(stream, [](xercesc::DOMLSParser* parser, InputStream& document) {
        XercesHelper::readDocumentFromStream(parser, document, false, {}, {});
    });
}

} // namespace opc::model
