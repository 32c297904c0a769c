#pragma once

#include <opc/inspection/Export.hpp>
#include <opc/inspection/Rule.hpp>

#include <string>
#include <string_view>

namespace opc::inspection {

/// Whether a text is an xsd:ID.
OPC_INSPECTION_EXPORT bool isValidID(std::string_view id);

/// What is wrong with the type of a relationship, as a sentence; empty if nothing is.
/// @param type  not empty
std::string defectOfType(std::string_view type);

/// What breaks RFC 3986 in a reference, as words: `a blank`; empty if nothing does.
struct URIDefect {
    Severity severity = Severity::Warning; ///< an error where a reader can't take the reference apart
    std::string what;
};

/// @param isLoose  characters that can't stand in a URI, but do in many, are no defect
OPC_INSPECTION_EXPORT URIDefect findURIDefect(std::string_view reference, bool isLoose);

} // namespace opc::inspection
