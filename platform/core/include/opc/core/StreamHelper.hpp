#pragma once

#include <opc/core/InputStream.hpp>

#include <iosfwd>

namespace opc {

class OPC_CORE_EXPORT StreamHelper {
public:
    StreamHelper() = delete;

    /// Copies the remaining bytes of `source` to `target`.
    /// @return whether `target` accepted all of them
    static bool copyStreamToStream(InputStream& source, std::ostream& target);
};

} // namespace opc
