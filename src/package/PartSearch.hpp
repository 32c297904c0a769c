#pragma once

#include "package/PackageImpl.hpp"

#include <iterator>

namespace opc::model {

/// Finds parts of an open package by their names. The last part that was found and the next one in the order of the
/// package are found again without a search: signatures name parts in this order.
class PartSearch {
public:
    /// @param package  must outlive this object, and keep its parts meanwhile
    explicit PartSearch(const Package& package)
        : package(package), parts(package.state().parts), last(parts.begin()) {}

    /// @return null if there is no such part
    const Part* find(const PartName& name) {
        if (!isLast(name)) {
            if (last != parts.end())
                ++last;
            if (!isLast(name))
                last = parts.find(name);
        }
        return last == parts.end() ? nullptr : &last->second;
    }

    /// The same as `Package::getPart`.
    Part get(const PartName& name) {
        const Part* const found = find(name);
        return found != nullptr ? *found : package.getPart(name);
    }

private:
    bool isLast(const PartName& name) const { return last != parts.end() && last->first == name; }

    const Package& package;
    const Package::Impl::PartMap& parts;
    Package::Impl::PartMap::const_iterator last;
};

} // namespace opc::model
