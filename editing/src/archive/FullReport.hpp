#pragma once

#include <opc/inspection/Inspection.hpp>

#include <limits>

namespace opc::editing::archive {

/// All that breaks the standard, so that none that isn't listed passes for new later.
inline inspection::Report inspectInFull(const inspection::Archive& archive,
                                        const physical::ZipOptions& limits) {
    inspection::InspectionOptions options;
    options.limits = limits;
    options.mostFindingsOfARule = std::numeric_limits<std::size_t>::max();
    return inspect(archive, options);
}

} // namespace opc::editing::archive
