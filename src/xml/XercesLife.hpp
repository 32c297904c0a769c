#pragma once

namespace opc::model {

/// Whether Xerces stays up until the process ends, as a `XercesGuard` has initialised it and not the application.
bool xercesStaysUp() noexcept;

} // namespace opc::model
