#pragma once

#include <opc/inspection/Format.hpp>

namespace opc::inspection {

/// Tells what a file is that is no package.
Format detectForeignFormat(const Archive& archive);

/// @throws Exception  which says what the file is, because it is no archive
[[noreturn]] void throwNoArchive(const Archive& archive);

} // namespace opc::inspection
