#pragma once

#include <opc/interfaces/IPhysicalPackage.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

namespace opc::test {

/// The property that whatever the model accepts to create, `close(false)` writes and `open` reads back equal: names,
/// content types and content of parts, relationships, core properties.
///
/// Creates what the bytes say, from odd names, types, targets, IDs and texts. That each may be refused is fine, with an
/// exception of the family. Then changes, deletes and creates in the package that was written, and looks again.
/// @param store  which is closed, and closed again afterwards if the property holds
/// @return empty if it holds; else what fails or differs
std::string findLossInOddPackage(interfaces::IPhysicalPackage& store, const std::uint8_t* data,
                                 std::size_t size);

} // namespace opc::test
