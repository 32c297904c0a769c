#pragma once

#include "checks/Findings.hpp"
#include "subject/Subject.hpp"

#include <string>
#include <string_view>

namespace opc::inspection {

/// Tells what the extended and the custom properties of an office document, and its custom XML, say about people.
void checkOfficeProperties(const Subject& subject, Findings& findings);

/// Adds a property to a list in a message; a long value is cut.
void appendProperty(std::string& list, std::string_view name, std::string value);

} // namespace opc::inspection
