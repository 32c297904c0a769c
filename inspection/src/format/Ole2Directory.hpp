#pragma once

#include <opc/inspection/Archive.hpp>

#include <string>
#include <vector>

namespace opc::inspection {

/// The names of the streams and storages in an OLE2 file, in UTF-8: the first ones, and none if it is damaged.
std::vector<std::string> readOle2Directory(const Archive& file);

} // namespace opc::inspection
