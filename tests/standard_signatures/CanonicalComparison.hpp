#pragma once

#include "support/PackageContent.hpp"

#include <cstddef>
#include <string>

namespace opc::test {

struct CanonicalComparison {
    std::size_t subtrees = 0; ///< that were compared, each in every form
    std::string difference;   ///< the first one, with both texts; empty if there is none
};

/// Compares the canonical forms of the elements of a document with those that libxml2 writes.
/// @param most  elements; of more, some are left out evenly
/// @return without subtrees if one of the two doesn't read the document
CanonicalComparison compareCanonicalForms(const Bytes& document, std::size_t most = 300);

} // namespace opc::test
