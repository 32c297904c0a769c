#pragma once

#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/model/PartName.hpp>

#include <string>
#include <vector>

namespace bench {

/// A name in a folder for each 100 parts.
opc::model::PartName partName(int number);

/// The content of such a part: XML of about 1 KiB.
std::string partContent(int number);

/// That of the first parts.
std::vector<std::string> partContents(int parts);

/// Fills an empty store with a part for each of the contents, each with 3 relationships, one of them to an external
/// target with a query, and saves it.
/// @param contentTypes  how many different ones the parts have
void createPackage(opc::interfaces::IPhysicalPackage& store, const std::vector<std::string>& contents,
                   int contentTypes = 1);

} // namespace bench
