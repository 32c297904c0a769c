#pragma once

#include "checks/Findings.hpp"
#include "content/ContentObserver.hpp"

#include <memory>
#include <vector>

namespace opc::inspection {

/// Expands the content of each part once and gives it to the observers that want it. Where damage counts (M3.14),
/// everything is expanded, items that are no parts too. Damaged content ends where the damage is; so does a document
/// that isn't well-formed (OFFICE-XML).
void passOverContent(const Subject& subject, Findings& findings,
                     const std::vector<std::unique_ptr<ContentObserver>>& observers);

} // namespace opc::inspection
