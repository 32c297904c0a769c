#pragma once

#include <opc/model/Export.hpp>

namespace opc::model {

/// Keeps Xerces initialised: use Xerces only while at least one guard exists.
///
/// Any number of guards can exist, and any number of threads can create and destroy them at the same time. A class with
/// parsers, serialisers, documents or `XercesString`s has a guard as its first member, which is destroyed last.
///
/// The first guard of a process initialises Xerces. After that Xerces stays initialised until the process ends, also
/// without guards, because initialising it takes longer than reading most packages. For the same reason the library keeps
/// idle parsers with their compiled schemas, at most four for each of four kinds of documents. Xerces takes 380 KiB, and
/// a parser 80 KiB (relationships, content types), 200 KiB (core properties) or 270 KiB (signatures). Leak checkers
/// don't report this memory, because static objects refer to it. The library creates no guard before it needs Xerces,
/// and doesn't need Xerces for packages of the usual form.
///
/// An application can call `XMLPlatformUtils::Initialize` and `Terminate` itself, in pairs, but not while another thread
/// uses this library. If it has initialised Xerces before the first guard (for example with its own memory manager), its
/// last `Terminate` terminates Xerces when no guard exists, and the library keeps no parsers until then. A later guard
/// initialises Xerces again.
class OPC_MODEL_EXPORT XercesGuard {
public:
    /// Initialises Xerces if necessary.
    /// @throws std::bad_alloc  Xerces gets no memory
    /// @throws the exceptions of Xerces and of the lock, unchanged
    XercesGuard();
    XercesGuard(const XercesGuard&) : XercesGuard() {}

    /// Does nothing: each guard counts by itself.
    XercesGuard& operator=(const XercesGuard&) = default;

    /// Leaves Xerces initialised if a guard has initialised it.
    ~XercesGuard(); // NOLINT(bugprone-exception-escape): its mutex is never destroyed, so locking it works
};

} // namespace opc::model
