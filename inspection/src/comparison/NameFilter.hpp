#pragma once

#include "comparison/NamePattern.hpp"
#include "comparison/PackageContents.hpp"

#include <opc/inspection/Comparison.hpp>

#include <string>
#include <vector>

namespace opc::inspection {

/// Leaves of a comparison what has certain names.
class NameFilter {
public:
    /// @param names  patterns; if there are none, everything stays
    /// @throws opc::Exception  one of them occurs in neither package
    NameFilter(const std::vector<std::string>& names, PackageContents& before, PackageContents& now);

    void apply(Comparison& comparison) const;

private:
    bool matches(const std::string& name) const;
    bool matches(const ContentDifference& difference) const;

    std::vector<NamePattern> patterns;
};

} // namespace opc::inspection
