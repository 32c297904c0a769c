#pragma once

#include <opc/inspection/Reports.hpp>

#include <string>

namespace opctool {

/// Reads the findings of an earlier report, in SARIF, JSON or JSON lines.
/// It calls the inspected files by their URIs, so that both forms name them in the same way.
/// @param root  relative to which URIs are, as in `toSARIFURI`
/// @throws EndsWith  the file can't be read, or is none of these; a message has said so
opc::inspection::Baseline readBaseline(const std::string& path, const std::string& root);

} // namespace opctool
