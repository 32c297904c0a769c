#pragma once

#include <opc/editing/Properties.hpp>

#include <string>
#include <vector>

namespace opc::editing::properties {

/// Properties, and whether their document is in the strict form.
struct ReadProperties {
    std::vector<Property> all;   ///< in the order of the elements below the root that are properties
    std::vector<long long> pids; ///< of custom properties; 0 where it isn't a number
    bool isStrict = false;
};

/// @throws Exception  the document isn't well-formed, or its root isn't that of such properties
ReadProperties readPropertyDocument(const std::string& document, PropertyKind kind);

} // namespace opc::editing::properties
