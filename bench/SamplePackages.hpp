#pragma once

#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/model/PartName.hpp>

#include <string>

namespace bench {

/// A name in a folder for each 100 parts.
opc::model::PartName partName(int number);

/// The content of such a part: XML of about 1 KiB.
std::string partContent(int number);

/// Fills an empty store with that many parts of `partContent`, each with 3 relationships, and saves it.
void createPackage(opc::interfaces::IPhysicalPackage& store, int parts);

} // namespace bench
