#pragma once

#include "content/PackageContents.hpp"

#include <string>
#include <vector>

namespace opc::standard_signatures {

/// A part with custom XML, which content controls of a text show.
struct DataStore {
    std::u16string root; ///< the local name of the root element; empty if it can't be told
    std::string id;      ///< as it is written; empty if a program may find none, or another one
};

/// The parts with a content control (`w:dataBinding`) that more than one store can fill: programs look into the store that the
/// control names, and if that one doesn't have what it looks for, into all. A text that can't be read to its end is among them.
/// @param stores  of the package
std::vector<const StoredPart*> findLooseBindings(const PackageContents& contents,
                                                 const std::vector<DataStore>& stores);

} // namespace opc::standard_signatures
