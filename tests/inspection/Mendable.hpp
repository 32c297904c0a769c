#pragma once

#include "RawZip.hpp"

#include <opc/editing/Mending.hpp>

namespace opc::test {

/// Mends a package, and expects that of it which holds for every package: what is left is what an inspection finds; nothing
/// is found that wasn't found before, but parts that lost their last relationship; a second time changes nothing; items whose
/// content stays keep their compressed bytes.
editing::Mending expectMends(const Bytes& package, const inspection::InspectionOptions& options);

/// The bytes of an archive.
Bytes bytesOf(const inspection::Archive& archive);

} // namespace opc::test
