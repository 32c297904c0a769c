#include "Failure.hpp"

#include <opc/core/Exception.hpp>

#include <zip.h>

#include <cerrno>
#include <system_error>

namespace opc::physical::zip {

namespace {

int codeOf(const zip_error& error) {
    switch (error.zip_err) {
    case ZIP_ER_NOZIP:
    case ZIP_ER_INCONS:
    case ZIP_ER_CRC:
    case ZIP_ER_EOF:
    case ZIP_ER_ZLIB:
    case ZIP_ER_COMPRESSED_DATA:
        return EBADMSG;
    case ZIP_ER_MULTIDISK:
    case ZIP_ER_COMPNOTSUPP:
    case ZIP_ER_ENCRNOTSUPP:
    case ZIP_ER_NOPASSWD:
        return ENOTSUP;
    case ZIP_ER_MEMORY:
        return ENOMEM;
    default:
        return EIO;
    }
}

/// Control characters in messages could take over a terminal.
bool isControl(char c) {
    return (c >= '\0' && c < ' ') || c == '\x7F';
}

} // namespace

void fail(const std::string& place, const std::string& what, int code) {
    throw Exception(place + ": " + what, {code, boost::system::generic_category()});
}

void failSystem(const std::string& place, const std::string& what, int code) {
    fail(place, what + ": " + std::generic_category().message(code), code);
}

void failZip(const std::string& place, const std::string& what, zip_error& error) {
    if (zip_error_system_type(&error) == ZIP_ET_SYS && error.sys_err != 0)
        failSystem(place, what, error.sys_err);
    fail(place, what + ": " + zip_error_strerror(&error), codeOf(error));
}

std::string itemPlace(const std::string& archive, const std::string& item) {
    std::string place = archive + ": ";
    for (const char c : item)
        place += isControl(c) ? '?' : c;
    return place;
}

} // namespace opc::physical::zip
