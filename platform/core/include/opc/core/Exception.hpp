#pragma once

#include <opc/core/Export.hpp>

#include <boost/system/error_code.hpp>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace opc {

/// The base of the exceptions of the library and of stores.
///
/// A value type: copy it freely, also to another thread; copying never fails. `what()` gives the message, which is fixed
/// for each kind of failure. `details()` gives what differs from one document to the next.
class OPC_CORE_EXPORT Exception : public std::runtime_error {
public:
    /// @param message    what went wrong, for a person to read
    /// @param errorCode  the cause that the system reported; the default is value 0 of the system category
    explicit Exception(const std::string& message,
                       boost::system::error_code errorCode = boost::system::error_code());
    Exception(const Exception&) = default;
    Exception(Exception&&) = default;
    Exception& operator=(const Exception&) = default;
    Exception& operator=(Exception&&) = default;
    ~Exception() override;

    const boost::system::error_code& code() const noexcept { return errorCode; }

    /// More about the failure, in English and in UTF-8: where in its document it is, the relationship or entry, what
    /// helps. These are phrases separated by "; ", the innermost place first, which continue the message; empty if there
    /// are none. The pointer is valid until details are added or this object is destroyed.
    const char* details() const noexcept { return known ? known->details.c_str() : ""; }

    /// Adds a phrase at the end; an empty phrase adds nothing. Existing copies don't change.
    void addDetails(const std::string& phrase);

    /// What the failure is about, for programs, in UTF-8: the name of the part, such as `/word/document.xml`, and the ID of
    /// the relationship. Empty if it is about none. The pointers are valid as long as that of `details()`.
    /// @{
    const char* part() const noexcept { return known ? known->part.c_str() : ""; }
    const char* relationship() const noexcept { return known ? known->relationship.c_str() : ""; }
    /// @}

    /// Names it, unless that was done already: the innermost place counts. Existing copies don't change.
    /// @{
    void setPart(const std::string& name);
    void setRelationship(const std::string& id);
    /// @}

    /// Takes over details, part and relationship of the failure that led to this one.
    void takeOver(const Exception& cause);

private:
    struct Known {
        std::string details, part, relationship;
    };

    boost::system::error_code errorCode;
    std::shared_ptr<const Known> known; ///< null if nothing is; shared, because copying must not fail
};

/// Makes an exception of the class `Raised` for the failure `cause`, with its details, part and relationship.
/// @param arguments  the arguments of the constructor
template <typename Raised, typename... Arguments>
Raised translated(const Exception& cause, Arguments&&... arguments) {
    Raised raised(std::forward<Arguments>(arguments)...);
    raised.takeOver(cause);
    return raised;
}

/// The same failure, which says that it is about this part.
template <typename Raised>
Raised aboutPart(const std::string& part, Raised failure) {
    failure.setPart(part);
    return failure;
}

} // namespace opc
