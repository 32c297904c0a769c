#pragma once

#include "subject/Subject.hpp"

#include <opc/inspection/Format.hpp>

namespace opc::inspection {

/// Tells the format of a package, or of another file.
Format detectFormat(const Subject& subject);

} // namespace opc::inspection
