#include "coreproperties/CorePropertiesNames.hpp"

#include "coreproperties/CorePropertiesVocabulary.hpp"
#include "xml/PlainDocument.hpp"

namespace opc::model {

using namespace vocabulary::core_properties;

CorePropertiesName::CorePropertiesName(std::string_view written)
    : namespaceURI(widen(namespaceOf(prefixOf(written)))), qualified(widen(written)),
      local(widen(localPart(written))) {
}

} // namespace opc::model
