#pragma once

#include "content/ContentObserver.hpp"

#include <memory>
#include <vector>

namespace opc::inspection {

/// Expands the content of each part once and gives it to the observers that want it. A part that is damaged ends where the
/// damage is.
void passOverContent(const Subject& subject, const std::vector<std::unique_ptr<ContentObserver>>& observers);

} // namespace opc::inspection
