#pragma once

#include "shared/NamedList.hpp"

#include <memory>
#include <string>
#include <vector>

namespace opc::physical::memory {

using SharedBytes = std::shared_ptr<std::vector<unsigned char>>;

/// The saved content of one part.
struct StoredPart {
    StoredPart(std::u16string name, std::u16string contentType, SharedBytes bytes)
        : name(std::move(name)), contentType(std::move(contentType)), bytes(std::move(bytes)) {}

    std::u16string name;
    std::u16string contentType;
    SharedBytes bytes; ///< never changed in place, because others may be reading it
};

/// The saved content of a package.
struct MemoryStore {
    bool exists = false;
    SharedBytes contentTypes; ///< null if there is no such stream
    NamedList<StoredPart> parts;
};

/// Throws `opc::Exception` with `message` and `code`, a value of the generic category.
[[noreturn]] void raise(const std::string& message, int code);

/// The same with `name` after the message.
[[noreturn]] void raise(const std::string& message, const std::u16string& name, int code);

} // namespace opc::physical::memory
