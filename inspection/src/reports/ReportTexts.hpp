#pragma once

#include <opc/inspection/Finding.hpp>
#include <opc/inspection/Reports.hpp>

#include <string>
#include <string_view>

namespace opc::inspection {

/// What more than one format says in the same words. Nothing is escaped.

std::string_view nameOf(Severity severity); ///< "error"

/// `/part(3,14)#rId`, or the item without a slash in front, or `@OFFSET`; empty if a finding is about the whole file.
std::string describe(const Place& place);

/// "2 errors", "1 error".
std::string countOf(std::uint64_t count, std::string_view noun);

/// "3 errors, 1 warning, 0 infos", and what is known.
std::string describeCounts(const ReportSummary& summary);

} // namespace opc::inspection
