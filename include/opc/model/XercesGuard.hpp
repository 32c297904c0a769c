#pragma once

#include <opc/model/Export.hpp>

namespace opc::model {

/// Keeps the Xerces platform alive: Xerces may be used only while at least one guard lives.
///
/// Guards nest, and any number of threads may make and destroy them at the same time. A class that keeps
/// parsers, serialisers, documents or `XercesString`s holds a guard as its first member, so that it is
/// destroyed last.
class OPC_MODEL_EXPORT XercesGuard {
public:
    /// Initialises Xerces if this is the only guard.
    /// A failure of Xerces or of the lock passes unchanged, but for lack of memory, which is `std::bad_alloc`;
    /// then there is no guard.
    XercesGuard();
    XercesGuard(const XercesGuard&) : XercesGuard() {}

    /// Does nothing: each guard stands for itself.
    XercesGuard& operator=(const XercesGuard&) = default;

    /// Tears Xerces down if this is the last guard.
    ~XercesGuard(); // NOLINT(bugprone-exception-escape): its mutex is never destroyed, so locking it works
};

} // namespace opc::model
