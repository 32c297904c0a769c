#include <opc/core/Exception.hpp>

namespace opc {

Exception::Exception(const std::string& message, boost::system::error_code errorCode)
    : std::runtime_error(message), errorCode(errorCode) {
}

void Exception::addDetails(const std::string& phrase) {
    if (!phrase.empty())
        detailText = std::make_shared<const std::string>(detailText ? *detailText + "; " + phrase : phrase);
}

// Here, so that there is one type information of the class in the program.
Exception::~Exception() = default;

} // namespace opc
