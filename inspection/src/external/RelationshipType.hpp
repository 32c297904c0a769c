#pragma once

#include <string>
#include <string_view>

namespace opc::inspection {

/// What a relationship type means to office programs, without white space around it. They know whole types; a type whose last segment alone is known
/// may mean the same to a reader that is less exact.
struct RelationshipType {
    explicit RelationshipType(std::string_view type);

    std::string name;  ///< the last segment, in lower case
    bool hasKnownBase; ///< of ECMA-376, transitional or strict, or of Microsoft
};

/// A target as readers take it, before they look for its scheme: an `xsd:anyURI` has no white space around it, and readers
/// drop controls there, and tabs and line breaks inside.
std::string plainTarget(std::string_view target);

/// The scheme in front of a target, in lower case; empty for a relative reference and for a drive, `C:`.
std::string schemeOf(std::string_view target);

} // namespace opc::inspection
