#pragma once

#include <opc/model/XercesString.hpp>

#include <string_view>

namespace opc::model {

/// A name in core properties as Xerces takes it: qualified in writing, and local in reading. A `XercesGuard` must
/// live as long as it does.
struct CorePropertiesName {
    /// @param written  with a usual prefix (`CorePropertiesVocabulary.hpp`), or one that XML itself has
    explicit CorePropertiesName(std::string_view written);

    const XercesString namespaceURI;
    const XercesString qualified;
    const XercesString local;
};

} // namespace opc::model
