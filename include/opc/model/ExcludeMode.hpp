#pragma once

#include <cstdint>

namespace opc::model {

/// What a list of parts or relationships leaves out.
enum class ExcludeMode : std::uint32_t {
    ExcludeNone = 0,    ///< nothing
    ExcludeManaged = 1, ///< what data managers manage, such as the parts of digital signatures
};

} // namespace opc::model
