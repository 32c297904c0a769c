#pragma once

#include <opc/inspection/Format.hpp>

namespace opc::inspection {

/// Tells what a file is that is no package.
Format detectForeignFormat(const Archive& archive);

} // namespace opc::inspection
