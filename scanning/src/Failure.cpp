#include <opc/scanning/Failure.hpp>

#include <opc/core/Exception.hpp>
#include <opc/model/Errors.hpp>

#include <boost/core/demangle.hpp>

#include <cerrno>
#include <map>
#include <typeinfo>

namespace opc::scanning {

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
        {"CryptoNotLoaded", "installation"},
        {"XmlParserNotLoaded", "installation"},
        {"bad_alloc", "limit"},
    };
    const auto found = kinds.find(name);
    return found == kinds.end() ? "format" : found->second;
}

int codeOf(const std::exception& failure) {
    if (const auto* const signature = dynamic_cast<const model::InvalidSignature*>(&failure))
        return signature->getErrorCode().value();
    const auto* const own = dynamic_cast<const Exception*>(&failure);
    return own == nullptr ? 0 : own->code().value();
}

} // namespace

Failure describe(const std::exception& failure, const std::string& package) {
    Failure described{nameOfClass(failure), codeOf(failure), failure.what(), {}, {}};
    for (const std::string& place :
         {package + ": ", std::string("archive from a stream: "), std::string("archive in memory: "),
          std::string("archive of the application: ")})
        if (described.message.compare(0, place.size(), place) == 0)
            described.message.erase(0, place.size());
    const auto* const own = dynamic_cast<const Exception*>(&failure);
    if (own == nullptr)
        return described;
    described.part = own->part();
    described.relationship = own->relationship();
    if (*own->details() != '\0')
        described.message += std::string("; ") + own->details();
    return described;
}

std::string Failure::kind() const {
    return code == EFBIG && className != "InvalidSignature" ? "limit" : kindOfClass(className);
}

} // namespace opc::scanning
