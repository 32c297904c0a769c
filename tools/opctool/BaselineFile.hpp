#pragma once

#include <opc/inspection/Reports.hpp>

#include <string>

namespace opctool {

/// Reads the findings of an earlier report, in SARIF, JSON or JSON lines.
/// It calls the inspected files by their URIs, so that both forms name them in the same way.
/// @param root  relative to which URIs are, as in `toSARIFURI`
/// @throws opc::Exception  the file can't be read, or is none of these
opc::inspection::Baseline readBaseline(const std::string& path, const std::string& root);

} // namespace opctool
