#include "xml/ReusedParser.hpp"

#include "xml/DocumentHandlerLink.hpp"

#include <xercesc/internal/XMLScanner.hpp>

namespace opc::model {

bool ReusedParser::isWorn(xercesc::DOMLSParser& parser) {
    constexpr unsigned int MANY = 500; // of all namespaces so far, which stand in a table of fixed size
    return scannerOf(parser).getURIStringPool()->getStringCount() > MANY;
}

} // namespace opc::model
