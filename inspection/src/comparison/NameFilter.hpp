#pragma once

#include "comparison/NamePattern.hpp"

#include <opc/inspection/Comparison.hpp>
#include <opc/inspection/Export.hpp>

#include <string>
#include <vector>

namespace opc::inspection {

class PackageContents;

/// Leaves of a comparison what has certain names.
class OPC_INSPECTION_EXPORT NameFilter {
public:
    /// @param names  patterns; if there are none, everything stays
    explicit NameFilter(const std::vector<std::string>& names);

    /// @throws opc::Exception  one of the names occurs in neither package
    void requireIn(const PackageContents& before, const PackageContents& now) const;

    void apply(Comparison& comparison) const;

private:
    struct Named {
        std::string name;
        NamePattern pattern;
    };

    bool matches(const std::string& name) const;
    bool matches(const ContentDifference& difference) const;

    std::vector<Named> patterns;
};

} // namespace opc::inspection
