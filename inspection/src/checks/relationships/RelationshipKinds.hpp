#pragma once

#include "checks/Findings.hpp"
#include "subject/Subject.hpp"

#include <opc/inspection/Export.hpp>

namespace opc::inspection {

/// By the type of the standard, or by that of ECMA-376 Part 1.
OPC_INSPECTION_EXPORT bool isCoreProperties(const RelationshipView& entry);
OPC_INSPECTION_EXPORT bool isThumbnail(const RelationshipView& entry);

/// Whether a type is one of office documents: `lastSegment` then tells which, in transitional and in strict documents.
OPC_INSPECTION_EXPORT bool isOfficeType(std::string_view type);

/// Whether it isn't known what the relationships lead to; another rule tells why.
bool isUnread(const RelationshipsView& view);

/// Checks that a source has at most one relationship of the types of which it can have only one.
void checkSingleTypes(const RelationshipsView& view, const Place& place, Findings& findings);

/// Whether a part that two relationships lead to can't be both.
bool areInConflict(const RelationshipView& first, const RelationshipView& second);

} // namespace opc::inspection
