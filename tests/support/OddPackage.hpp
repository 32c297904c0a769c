#pragma once

#include <opc/interfaces/IPhysicalPackage.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

namespace opc::test {

/// The property that `close(false)` writes everything that the model accepts to create, and `open` reads it back
/// equal: names, content types and content of parts, relationships, core properties.
///
/// Creates what the bytes say, from odd names, types, targets, IDs and texts. Each may be refused with an exception
/// of the family. Then changes, deletes and creates in the written package, and compares again.
/// @param store  a closed store; if the property holds, it is closed again afterwards
/// @return empty if it holds; otherwise what fails or differs
std::string findLossInOddPackage(interfaces::IPhysicalPackage& store, const std::uint8_t* data,
                                 std::size_t size);

} // namespace opc::test
