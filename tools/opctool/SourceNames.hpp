#pragma once

#include <cstddef>

namespace opc::model {
class RelationshipSource;
}

namespace opctool {

/// How long a list of relationships gets by their sources alone: each row names its source, so that a small package
/// with one long name can make a list that has no end.
class SourceNames {
public:
    /// To be called with each source before anything is printed.
    /// @throws opc::Exception  if the list would be too long
    void add(const opc::model::RelationshipSource& source);

private:
    std::size_t length = 0;
};

} // namespace opctool
