#pragma once

#include "subject/Subject.hpp"

#include <opc/inspection/Export.hpp>
#include <opc/inspection/External.hpp>
#include <opc/inspection/Inspection.hpp>

namespace opc::inspection {

/// The same as the functions over an `Archive`, for several answers about one view of it.
/// @{
OPC_INSPECTION_EXPORT Report inspect(const Subject& subject, const InspectionOptions& options);

OPC_INSPECTION_EXPORT Externals listExternals(const Subject& subject);
/// @}

} // namespace opc::inspection
