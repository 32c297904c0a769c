#include "Failures.hpp"

#include <opc/core/Exception.hpp>
#include <opc/model/Errors.hpp>

#include <boost/core/demangle.hpp>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <map>
#include <typeinfo>

namespace opctool {

namespace {

std::string nameOfClass(const std::exception& failure) {
    const std::string name = boost::core::demangle(typeid(failure).name());
    return name.substr(name.rfind(':') + 1);
}

/// The kinds of classes; all others are about what a package says.
const char* kindOfClass(const std::string& name) {
    static const std::map<std::string, const char*> kinds{
        {"ContentTypeParameterNotFound", "not-found"},
        {"PackageNotFound", "not-found"},
        {"PartNotFound", "not-found"},
        {"RelationshipNotFound", "not-found"},
        {"SignatureNotFound", "not-found"},
        {"InvalidObject", "state"},
        {"PackageAlreadyOpen", "state"},
        {"PackageCreateOnly", "state"},
        {"PackageNotOpen", "state"},
        {"PackageReadOnly", "state"},
        {"PartAlreadyExists", "state"},
        {"RelationshipAlreadyExists", "state"},
        {"Exception", "store"},
        {"InvalidPartStream", "store"},
        {"InvalidXMLSchema", "store"},
        {"PackageCloseFailed", "store"},
        {"PackageOpenFailed", "store"},
        {"PackagePermissionDenied", "store"},
        {"PartCreateFailed", "store"},
        {"PartDeleteFailed", "store"},
        {"BreaksSignatures", "signature"},
        {"CouldNotGenerateSignature", "signature"},
        {"CouldNotRemoveSignature", "signature"},
        {"InvalidSignature", "signature"},
        {"bad_alloc", "limit"},
    };
    const auto found = kinds.find(name);
    return found == kinds.end() ? "format" : found->second;
}

int codeOf(const std::exception& failure) {
    if (const auto* const signature = dynamic_cast<const opc::model::InvalidSignature*>(&failure))
        return signature->getErrorCode().value();
    const auto* const own = dynamic_cast<const opc::Exception*>(&failure);
    return own == nullptr ? 0 : own->code().value();
}

/// The word in a message at `begin`, without the mark that ends its phrase.
nlohmann::ordered_json wordAt(const std::string& message, std::size_t begin) {
    const std::string word = message.substr(begin, message.find(' ', begin) - begin);
    return word.substr(0, word.find_last_not_of(":;,") + 1);
}

/// The part that the message names first; null if it names none. Messages write " /a.xml" or "name:/a.xml".
nlohmann::ordered_json findPart(const std::string& message) {
    for (std::size_t at = message.find('/'); at != std::string::npos; at = message.find('/', at + 1)) {
        const bool isBegin = at == 0 || message[at - 1] == ' ' || message[at - 1] == ':';
        if (isBegin && message.compare(at, 2, "//") != 0)
            return wordAt(message, at);
    }
    return nullptr;
}

/// The relationship that the details name; null if they name none.
nlohmann::ordered_json findRelationship(const std::string& details) {
    const std::string name = "relationship ";
    const std::size_t at = details.find(name);
    if (at == std::string::npos)
        return nullptr;
    return wordAt(details, at + name.size());
}

} // namespace

Failure describe(const std::exception& failure, const std::string& package) {
    Failure described{nameOfClass(failure), codeOf(failure), failure.what(), {}};
    for (const std::string& place : {package + ": ", std::string("archive from a stream: ")})
        if (described.message.compare(0, place.size(), place) == 0)
            described.message.erase(0, place.size());
    if (const auto* const own = dynamic_cast<const opc::Exception*>(&failure))
        described.details = own->details();
    if (!described.details.empty())
        described.message += "; " + described.details;
    return described;
}

std::string Failure::kind() const {
    return code == EFBIG && className != "InvalidSignature" ? "limit" : kindOfClass(className);
}

nlohmann::ordered_json toJSON(const Failure& failure) {
    return {{"class", failure.className},
            {"code", failure.code},
            {"kind", failure.kind()},
            {"message", failure.message},
            {"part", findPart(failure.message)},
            {"relationship", findRelationship(failure.details)}};
}

} // namespace opctool
