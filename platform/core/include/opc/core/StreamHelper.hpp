#pragma once

#include <opc/core/InputStream.hpp>

#include <iosfwd>

namespace opc {

class OPC_CORE_EXPORT StreamHelper {
public:
    StreamHelper() = delete;

    /// Copies all bytes that are left in `source` to `target`.
    /// @return whether `target` took them all
    static bool copyStreamToStream(InputStream& source, std::ostream& target);
};

} // namespace opc
