#pragma once

#include <opc/inspection/Export.hpp>

#include <string>

namespace opc::inspection {

/// A name by which file systems that don't distinguish letter case, or composed from decomposed accents, tell files apart:
/// for Latin letters, and for the case of Greek and Cyrillic ones.
/// @param name  in UTF-8
OPC_INSPECTION_EXPORT std::u16string foldedName(const std::string& name);

} // namespace opc::inspection
