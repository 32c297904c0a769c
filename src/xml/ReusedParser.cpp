#include "xml/ReusedParser.hpp"

#include "xml/DocumentHandlerLink.hpp"

#include <xercesc/internal/XMLScanner.hpp>

namespace opc::model {

bool ReusedParser::isWorn(xercesc::DOMLSParser& parser, std::uint64_t length) {
    constexpr std::uint64_t LONG = 256 << 10; // the parser keeps room for the longest values
    constexpr unsigned int MANY = 500;        // it keeps all namespaces so far in a table of fixed size
    return length > LONG || scannerOf(parser).getURIStringPool()->getStringCount() > MANY;
}

} // namespace opc::model
