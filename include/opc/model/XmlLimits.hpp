#pragma once

#include <cstdint>

namespace opc::model {

/// Limits on the XML of a package that the library itself reads: content types, relationships, core properties and
/// signatures. A document beyond a limit is refused when it is read and when it is written; the message contains the
/// limit. The content of other parts isn't counted.
///
/// With the defaults, an archive below 1 MiB uses at most 256 MiB of memory, and a package of 100,000 parts with three
/// relationships and an `Override` each can be opened.
struct XmlLimits {
    struct Size {
        std::uint64_t bytes;
        std::uint64_t elements;
    };

    Size contentTypes{32U << 20, 250000};  ///< the content types stream
    Size relationships{32U << 20, 250000}; ///< the relationships part of one source
    Size coreProperties{1U << 20, 10000};  ///< the core properties part
    /// A signature part. Its elements are counted by the memory that they use: every 50 bytes count as one element, and a
    /// certificate as 500. In the form that this library writes, every two tags count as one. In other forms, which need
    /// a tree, all bytes count twice, and each element and attribute counts as two.
    Size signature{32U << 20, 1000000};
    Size package{96U << 20, 1000000}; ///< all documents of one package that are in use together
};

} // namespace opc::model
