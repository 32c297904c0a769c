#include "xml/UnreadElements.hpp"

namespace opc::model {

std::string describeUnread(std::size_t count) {
    return "a change would lose elements that weren't read, as they have a namespace prefix or stand in the "
           "wrong place: " +
           std::to_string(count);
}

} // namespace opc::model
