#include "NewFile.hpp"

#include <opc/core/Exception.hpp>

#include <cerrno>

namespace opctool {

void NewFile::fail() const {
    const int error = errno;
    throw opc::Exception(
        finalPath + (error == EEXIST ? " exists already; use --force to replace it" : " can't be written"),
        {error, boost::system::generic_category()});
}

} // namespace opctool
