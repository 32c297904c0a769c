#pragma once

#include "subject/Subject.hpp"

#include <map>
#include <string>

namespace opc::inspection {

/// The fields of a core properties document, by the names of their elements, as far as the document can be read. The keywords
/// are one field.
std::map<std::string, std::string> readCoreFields(const Archive& archive, const PartView& part);

} // namespace opc::inspection
