#pragma once

#include "content/PackageContents.hpp"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace opc::standard_signatures {

/// A part with custom XML, which content controls of a text show.
struct DataStore {
    std::u16string root; ///< the local name of the root element; empty if it can't be told
    std::string id;      ///< as it is written; empty if a program may find none, or another one
};

/// The parts with a content control (`w:dataBinding`) that more than one store can fill: programs look into the store that the
/// control names, and if that one doesn't have what it looks for, into all. A text that can't be read to its end is among them.
class DataBindings {
public:
    /// @param contents  must outlive this object
    /// @param stores    of the package
    DataBindings(const PackageContents& contents, std::vector<DataStore> stores)
        : contents(contents), stores(std::move(stores)) {}

    /// Reads the parts when it is asked first, but for those that were digested and have no control.
    const std::vector<const StoredPart*>& loose();

private:
    const PackageContents& contents;
    const std::vector<DataStore> stores;
    std::optional<std::vector<const StoredPart*>> found;
};

} // namespace opc::standard_signatures
