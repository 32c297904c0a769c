#pragma once

#include <string>

namespace opc::model {

/// Whether `id` is a name by the productions NameStartChar and NameChar of XML 1.0 (Fifth Edition) section 2.3,
/// without colons, as xsd:ID requires, and with characters up to U+FFFF.
bool isRelationshipID(const std::u16string& id);

} // namespace opc::model
