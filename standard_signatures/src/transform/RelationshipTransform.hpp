#pragma once

#include "transform/RelationshipsDocument.hpp"

#include <set>
#include <string>
#include <vector>

namespace opc::standard_signatures {

/// What a relationships transform selects: the union of both.
struct RelationshipSelection {
    std::set<std::string> ids;
    std::set<std::string> types;
};

/// The relationships that are selected, in the order of the document. Texts are compared character by character.
/// @throws Refusal  no relationship has one of the IDs
std::vector<const RelationshipValues*> select(const RelationshipsDocument& document,
                                              const RelationshipSelection& selection);

/// What the relationships transform and the canonicalization behind it make of them (ECMA-376 Part 2, relationships
/// transform), as octets. All forms of Canonical XML write the same.
std::string canonicalize(const std::vector<const RelationshipValues*>& selected);

} // namespace opc::standard_signatures
