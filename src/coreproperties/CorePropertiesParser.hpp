#pragma once

#include "xml/DocumentBudget.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/model/CoreProperties.hpp>

namespace opc::model {

/// Has the validating parser read a core properties document of any form.
/// @param share  counts its elements
/// @throws as `CorePropertiesSerializer::read`, but `InvalidXMLDocument` for a document that isn't valid
void parseCoreProperties(InputStream& stream, CoreProperties& properties, DocumentShare& share);

} // namespace opc::model
