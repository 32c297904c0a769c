#pragma once

#include <opc/model/Export.hpp>

namespace opc::model {

/// Keeps the Xerces platform alive: Xerces may be used only while at least one guard lives.
///
/// Guards nest, and any number of threads may make and destroy them at the same time. A class that keeps
/// parsers, serialisers, documents or `XercesString`s holds a guard as its first member, so that it is
/// destroyed last.
///
/// The first guard of a process initialises Xerces, and then it stays up until the process ends, guards or not: to
/// start it takes longer than to read most packages. What it holds then, some 400 KiB, can be reached from its static
/// objects: checkers of leaks don't report it. The library makes no guard before it needs Xerces, and reading packages
/// of the usual form needs none.
///
/// An application may call `XMLPlatformUtils::Initialize` and `Terminate` itself, in pairs, and not at the same time
/// as another thread uses this library. If it has initialised Xerces before the first guard, with a memory manager
/// of its own perhaps, its last `Terminate` tears Xerces down once no guard lives. A guard that comes later
/// initialises it anew.
class OPC_MODEL_EXPORT XercesGuard {
public:
    /// Initialises Xerces if it isn't up.
    /// A failure of Xerces or of the lock passes unchanged, but for lack of memory, which is `std::bad_alloc`;
    /// then there is no guard.
    XercesGuard();
    XercesGuard(const XercesGuard&) : XercesGuard() {}

    /// Does nothing: each guard stands for itself.
    XercesGuard& operator=(const XercesGuard&) = default;

    /// Leaves Xerces up if a guard has initialised it.
    ~XercesGuard(); // NOLINT(bugprone-exception-escape): its mutex is never destroyed, so locking it works
};

} // namespace opc::model
