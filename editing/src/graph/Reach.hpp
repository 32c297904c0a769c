#pragma once

#include <opc/model/Package.hpp>

#include <cstddef>
#include <vector>

namespace opc::editing {

/// Where the relationships of a package lead. Parts are numbered in the order of their names.
class Reach {
public:
    using Marks = std::vector<bool>; ///< one for each part

    explicit Reach(const model::Package& package);

    const std::vector<model::Part>& parts() const { return all; }

    /// The parts that relationships of the package itself lead to.
    const std::vector<std::size_t>& fromPackage() const { return ofPackage; }

    /// Marks the parts that paths lead to from these, which are marked, too.
    /// @param closed  no path leads to these or through them
    void mark(const std::vector<std::size_t>& starts, Marks& marks, const Marks& closed) const;

    Marks makeMarks() const { return Marks(all.size()); }

private:
    std::vector<std::size_t> targetsOf(const model::RelationshipSource& source) const;

    std::vector<model::Part> all;
    std::vector<std::size_t> ofPackage;
    std::vector<std::vector<std::size_t>> ofParts;
};

} // namespace opc::editing
