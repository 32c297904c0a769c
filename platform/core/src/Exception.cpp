#include <opc/core/Exception.hpp>

namespace opc {

Exception::Exception(const std::string& message, boost::system::error_code errorCode)
    : std::runtime_error(message), errorCode(errorCode) {
}

void Exception::addDetails(const std::string& phrase) {
    if (phrase.empty())
        return;
    Known more = known ? *known : Known();
    more.details += (more.details.empty() ? "" : "; ") + phrase;
    known = std::make_shared<const Known>(std::move(more));
}

void Exception::setPart(const std::string& name) {
    if (*part() != '\0' || name.empty())
        return;
    Known more = known ? *known : Known();
    more.part = name;
    known = std::make_shared<const Known>(std::move(more));
}

void Exception::setRelationship(const std::string& id) {
    if (*relationship() != '\0' || id.empty())
        return;
    Known more = known ? *known : Known();
    more.relationship = id;
    known = std::make_shared<const Known>(std::move(more));
}

void Exception::takeOver(const Exception& cause) {
    addDetails(cause.details());
    setPart(cause.part());
    setRelationship(cause.relationship());
}

// Defined here, so that the program has one type information of the class.
Exception::~Exception() = default;

} // namespace opc
