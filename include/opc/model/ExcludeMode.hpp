#pragma once

#include <cstdint>

namespace opc::model {

/// What an enumeration of parts or relationships leaves out.
enum class ExcludeMode : std::uint32_t {
    ExcludeNone = 0,    ///< nothing
    ExcludeManaged = 1, ///< what data managers keep for themselves, such as the parts of digital signatures
};

} // namespace opc::model
