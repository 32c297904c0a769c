#include "coreproperties/CorePropertiesNames.hpp"

#include "coreproperties/CorePropertiesVocabulary.hpp"
#include "xml/PlainDocument.hpp"

namespace opc::model {

namespace {

using namespace vocabulary::core_properties;

std::string_view namespaceOf(std::string_view prefix) {
    for (const auto& [usual, uri] : NAMESPACES)
        if (usual == prefix)
            return uri;
    return prefix == "xml" ? "http://www.w3.org/XML/1998/namespace" : "http://www.w3.org/2000/xmlns/";
}

} // namespace

CorePropertiesName::CorePropertiesName(std::string_view written)
    : namespaceURI(widen(namespaceOf(prefixOf(written)))), qualified(widen(written)),
      local(widen(localPart(written))) {
}

} // namespace opc::model
