#pragma once

#include <cstddef>

namespace opc::model {
class RelationshipSource;
}

namespace opctool {

/// Counts the length of the sources in a list of relationships. Each row names its source, so a small package with
/// one long name can make an endless list.
class SourceNames {
public:
    /// Call it with each source before anything is printed.
    /// @throws opc::Exception  the list would be too long
    void add(const opc::model::RelationshipSource& source);

private:
    std::size_t length = 0;
};

} // namespace opctool
