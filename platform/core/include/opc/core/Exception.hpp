#pragma once

#include <opc/core/Export.hpp>

#include <boost/system/error_code.hpp>

#include <stdexcept>
#include <string>

namespace opc {

/// The base of every failure that the library, and a physical layer under it, reports.
///
/// A value: it may be copied, also to another thread. `what()` gives the message.
class OPC_CORE_EXPORT Exception : public std::runtime_error {
public:
    /// @param message  what went wrong, for a person to read
    /// @param code     the cause as the system tells it; the default is value 0 of the system category
    explicit Exception(const std::string& message,
                       boost::system::error_code code = boost::system::error_code());
    Exception(const Exception&) = default;
    Exception(Exception&&) = default;
    Exception& operator=(const Exception&) = default;
    Exception& operator=(Exception&&) = default;
    ~Exception() override;

    const boost::system::error_code& code() const noexcept { return errorCode; }

private:
    boost::system::error_code errorCode;
};

} // namespace opc
