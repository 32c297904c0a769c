#pragma once

#include "support/PackageContent.hpp"
#include "support/ScriptedPackage.hpp"
#include "support/Throws.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/CoreProperties.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/model/StandardPartInfo.hpp>

/// @file
/// What most tests of packages on a store in memory use.

namespace opc::test {

using interfaces::OpenMode;
using physical::MemoryPackage;

} // namespace opc::test
