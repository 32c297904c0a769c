#pragma once

#include "canonical/XmlTree.hpp"
#include "core/CountedStream.hpp"

#include <opc/standard_signatures/Verification.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace opc::standard_signatures {

/// What the work on all signatures of a package may still cost.
struct WorkLeft {
    std::uint64_t documentBytes = 96U << 20;  ///< of documents that are read as a tree
    std::uint64_t canonicalForms = 8'000'000; ///< work on these forms: see `canonicalize`
    std::uint64_t canonicalBytes = 1U << 30;  ///< of what is digested in the form of selected relationships
    std::size_t relationships = 1000000;      ///< that are selected, as often as they are
    std::size_t keys = 200;                   ///< that are tried on signature values
    std::size_t timeStamps = 100;             ///< that are checked
    std::size_t listedReferences = CryptographyAnswer::MOST_LISTED;

    /// Reads a document that is read as a tree: an `XmlTree` or a `SignatureDocument`.
    template <typename Document>
    Document read(InputStream& stream) {
        CountedStream counted(stream);
        XmlTreeLimits limits;
        limits.bytes = std::min(limits.bytes, documentBytes);
        Document document = Document::read(counted, limits);
        documentBytes -= std::min(counted.count(), documentBytes);
        return document;
    }
};

} // namespace opc::standard_signatures
