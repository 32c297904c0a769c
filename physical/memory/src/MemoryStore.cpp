#include "MemoryStore.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>

namespace opc::physical::memory {

void raise(const std::string& message, int code) {
    throw Exception("Package in memory: " + message, {code, boost::system::generic_category()});
}

void raise(const std::string& message, const std::u16string& name, int code) {
    raise(message + ": " + toUDEString(name), code);
}

} // namespace opc::physical::memory
