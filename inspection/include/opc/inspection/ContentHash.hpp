#pragma once

#include <opc/inspection/Archive.hpp>
#include <opc/inspection/Export.hpp>

#include <string>
#include <vector>

namespace opc::inspection {

/// What a hash leaves out.
struct HashOptions {
    bool ignoresCoreProperties =
        false; ///< the parts that relationships of core properties lead to, and these relationships
    bool ignoresRelationshipIds = false;
    bool ignoresSignatures =
        false; ///< the signature origin, signatures and certificates, and the relationships to them
};

/// The digest of a part.
struct HashedPart {
    std::string name;
    std::string sha256; ///< of its bytes, in hexadecimal
};

/// A digest of what a package holds.
struct ContentHash {
    std::string sha256;            ///< in hexadecimal
    std::vector<HashedPart> parts; ///< sorted by name; without relationships parts and what was left out
};

/// Computes a digest of the names, content types and contents of parts and of the relationships. It doesn't depend on the
/// archive: order, compression, times, pieces, and how relationships and content types are written. So two packages have
/// the same hash if `compare` finds only items that are no parts. docs/formats.md defines it.
/// @throws opc::Exception  it is no ZIP archive, or a part can't be read
OPC_INSPECTION_EXPORT ContentHash hashContent(const Archive& archive, const HashOptions& options = {});

} // namespace opc::inspection
