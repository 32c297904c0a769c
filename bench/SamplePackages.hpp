#pragma once

#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/model/PartName.hpp>

#include <string>
#include <vector>

namespace bench {

/// A name, in a new folder for every 100 parts.
opc::model::PartName partName(int number);

/// The content of such a part: XML of about 1 KiB.
std::string partContent(int number);

/// The contents of the first parts.
std::vector<std::string> partContents(int parts);

/// Fills an empty store with a part for each of the contents, and saves it. Each part has 3 relationships, one of
/// them to an external target with a query.
/// @param contentTypes  how many different ones the parts have
void createPackage(opc::interfaces::IPhysicalPackage& store, const std::vector<std::string>& contents,
                   int contentTypes = 1);

} // namespace bench
