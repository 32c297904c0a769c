#include <opc/core/Exception.hpp>

namespace opc {

Exception::Exception(const std::string& message, boost::system::error_code code)
    : std::runtime_error(message), errorCode(code) {
}

// Here, so that there is one type information of the class in the program.
Exception::~Exception() = default;

} // namespace opc
