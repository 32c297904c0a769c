#pragma once

#include "checks/Findings.hpp"
#include "content/ContentObserver.hpp"

#include <memory>

namespace opc::inspection {

/// What the first bytes of parts show: content that isn't what its type says, document types, files in objects, data in
/// images (SEC-22, 30, 41, 68).
/// @param subject, findings  must outlive the observer
std::unique_ptr<ContentObserver> makeContentKindObserver(const Subject& subject, Findings& findings);

} // namespace opc::inspection
