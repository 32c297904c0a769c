#pragma once

#include "checks/Findings.hpp"
#include "content/ContentObserver.hpp"
#include "subject/Subject.hpp"

#include <memory>
#include <vector>

namespace opc::inspection {

/// The checks, each for one concern, in the order in which `inspect` calls them. Each goes on after every fault.
/// @{

void checkContainer(const Subject& subject, Findings& findings);     ///< checks/container
void checkNames(const Subject& subject, Findings& findings);         ///< checks/names
void checkContentTypes(const Subject& subject, Findings& findings);  ///< checks/contenttypes
void checkRelationships(const Subject& subject, Findings& findings); ///< checks/relationships
void checkProperties(const Subject& subject,
                     Findings& findings); ///< checks/properties: core properties, thumbnails
void checkSignatures(const Subject& subject, Findings& findings); ///< checks/signatures
void checkOffice(const Subject& subject, Findings& findings);     ///< checks/office
void checkSecurity(
    const Subject& subject, Findings& findings,
    const InspectionOptions& options); ///< checks/security: relationships, types and what hides

/// Those that look into the content of parts: damage, markup compatibility, fields, magic numbers.
/// @param subject, findings  outlive the observers
std::vector<std::unique_ptr<ContentObserver>> makeContentObservers(const Subject& subject,
                                                                   Findings& findings);

/// @}

} // namespace opc::inspection
