#pragma once

#include "xml/PackageDocument.hpp"

#include <opc/core/InputStream.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace opc::standard_signatures {

/// One relationship with its values as the parser gives them, in UTF-8.
struct RelationshipValues {
    std::string id, type, target;
    bool isExternal = false;
};

/// The relationships of a relationships part.
struct RelationshipsDocument {
    std::vector<RelationshipValues> relationships; ///< sorted by ID, character by character

    static constexpr std::size_t MOST_RELATIONSHIPS = 250000;

    /// Reads a part in which nothing is left to interpretation: by namespace, without foreign elements and attributes,
    /// without prefixes, which not all programs read, and with each ID once. Comments may stand anywhere, and values have
    /// no white space that may collapse.
    /// @param stream     open, at its first byte
    /// @param mostBytes  that it may have
    /// @throws Refusal  with `RelationshipsRefused` or `BeyondLimit`
    /// @throws model::InvalidXMLDocument
    /// @throws the exceptions of the stream
    static RelationshipsDocument read(InputStream& stream,
                                      std::uint64_t mostBytes = PackageDocument::MOST_BYTES);
};

} // namespace opc::standard_signatures
