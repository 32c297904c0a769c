#include <opc/core/Exception.hpp>

namespace opc {

Exception::Exception(const std::string& message, boost::system::error_code errorCode)
    : std::runtime_error(message), errorCode(errorCode) {
}

void Exception::addDetails(const std::string& phrase) {
    if (!phrase.empty())
        detailText = std::make_shared<const std::string>(detailText ? *detailText + "; " + phrase : phrase);
}

// Defined here, so that the program has one type information of the class.
Exception::~Exception() = default;

} // namespace opc
