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
/// What most tests of packages need.

namespace opc::test {

using interfaces::OpenMode;
using physical::MemoryPackage;

/// A package on a store in memory, whose calls are recorded and can be made to fail.
class PackageTest : public testing::Test {
protected:
    /// @param names  the names of empty parts in the store
    explicit PackageTest(const std::vector<std::u16string>& names = {}) { fill(store, names); }

    MemoryPackage store;
    ScriptedPackage physical{store};
    model::Package package{physical};
};

} // namespace opc::test
