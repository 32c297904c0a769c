#pragma once

#include <opc/inspection/Export.hpp>

#include <string>
#include <string_view>

namespace opc::inspection {

/// Matches names of parts against one that may hold `*`, for any characters within a segment, and `**`, for any characters.
/// Names compare as everywhere.
class OPC_INSPECTION_EXPORT NamePattern {
public:
    explicit NamePattern(std::string_view pattern);

    /// @param key  of the name: `keyOfName`
    bool matches(std::string_view key) const;

private:
    std::string pattern; ///< a key; `**` is one character there
};

} // namespace opc::inspection
