#pragma once

#include <opc/model/XercesString.hpp>

#include <string_view>

namespace opc::model {

/// A name in core properties in the form that Xerces takes: qualified for writing, local for reading. A `XercesGuard`
/// must outlive it.
struct CorePropertiesName {
    /// @param written  with a usual prefix (`CorePropertiesVocabulary.hpp`), or with a prefix of XML itself
    explicit CorePropertiesName(std::string_view written);

    const XercesString namespaceURI;
    const XercesString qualified;
    const XercesString local;
};

} // namespace opc::model
