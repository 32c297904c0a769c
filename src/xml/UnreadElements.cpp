#include "xml/UnreadElements.hpp"

namespace opc::model {

std::string describeElements(std::size_t count) {
    return "elements that weren't read, as they have a namespace prefix or stand in the wrong place: " +
           std::to_string(count);
}

std::string describeUnread(std::size_t count) {
    return "a change would lose " + describeElements(count);
}

} // namespace opc::model
