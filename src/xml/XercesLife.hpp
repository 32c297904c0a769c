#pragma once

namespace opc::model {

/// Whether Xerces stays initialised until the process ends, because a `XercesGuard` initialised it and not the
/// application.
bool xercesStaysUp() noexcept;

} // namespace opc::model
