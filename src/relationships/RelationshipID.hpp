#pragma once

#include <string>

namespace opc::model {

/// Whether `id` is a name by the productions NameStartChar and NameChar of XML 1.0 (Fifth Edition)
/// section 2.3, without the colon, as xsd:ID has it, and without what lies above U+FFFF.
bool isRelationshipID(const std::u16string& id);

} // namespace opc::model
