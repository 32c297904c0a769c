#pragma once

#include <opc/core/Export.hpp>

#include <boost/system/error_code.hpp>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace opc {

/// The base of every failure that the library, and a physical layer under it, reports.
///
/// A value: it may be copied, also to another thread; copying never fails. `what()` gives the message, which is
/// fixed for each kind of failure. What differs from one document to the next stands in `details()`.
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

    /// What is known beside the message, in UTF-8 and in English: where in its document the failure lies, which
    /// relationship or entry it is about, what helps. Phrases with "; " between them, from the inside outwards,
    /// to follow the message; empty if nothing is known. Valid until details are added, or this object dies.
    const char* details() const noexcept { return detailText ? detailText->c_str() : ""; }

    /// Adds a phrase at the end. An empty one adds nothing. Copies that were made before don't change.
    void addDetails(const std::string& phrase);

private:
    boost::system::error_code errorCode;
    std::shared_ptr<const std::string> detailText; ///< null if empty; shared, since copying must not fail
};

/// A failure of the class `Raised` that stands for `cause` and keeps its details.
/// @param arguments  of the constructor
template <typename Raised, typename... Arguments>
Raised translated(const Exception& cause, Arguments&&... arguments) {
    Raised raised(std::forward<Arguments>(arguments)...);
    raised.addDetails(cause.details());
    return raised;
}

} // namespace opc
