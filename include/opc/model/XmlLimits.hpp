#pragma once

#include <cstdint>

namespace opc::model {

/// How much XML a package may hold of what the library reads itself: content types, relationships, core
/// properties and signatures. A document beyond a limit is refused while it is read, and not written either; the
/// message names the limit. What parts hold otherwise isn't counted.
///
/// By default no archive below 1 MiB makes the library take more than 256 MiB of memory, and yet a package of
/// 100,000 parts with three relationships each, and an `Override` each, opens.
struct XmlLimits {
    struct Size {
        std::uint64_t bytes;
        std::uint64_t elements;
    };

    Size contentTypes{32U << 20, 250000};  ///< the content types stream
    Size relationships{32U << 20, 250000}; ///< the relationships part of one source
    Size coreProperties{1U << 20, 10000};  ///< the core properties part
    /// A signature part. Its elements are counted by the memory that it takes: every 50 bytes count as one and a
    /// certificate as 500. In the form in which this library writes it, so do every two tags; in any other, which
    /// takes a tree, all bytes count twice, and each element and attribute as two.
    Size signature{32U << 20, 1000000};
    Size package{96U << 20, 1000000}; ///< all that are open together, in one package
};

} // namespace opc::model
